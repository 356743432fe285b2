// The debug text sink: standard error (through the platform) and the hook.
#include "qv/core/DebugOutput.h"

#include <cstring>
#include <memory>
#include <mutex>
#include <new>

#include "qv/core/CodePage.h"
#include "qv/platform/DebugSink.h"

namespace qv {

namespace {

struct Hook {
    DebugTextHook function = nullptr;
    void *context = nullptr;
};

std::mutex hookLock;
Hook installed;

Hook CurrentHook() {
    std::lock_guard<std::mutex> lock(hookLock);
    return installed;
}

} // namespace

// The hook is called outside the lock, so it may itself write debug text; a
// call already under way may still reach a hook that was just replaced.
void OutputDebugStringA(char const *utf8) {
    if (!utf8) return;
    if (platform::DebugToStandardError()) platform::WriteStandardError(utf8, std::strlen(utf8));
    Hook hook = CurrentHook();
    if (hook.function) hook.function(utf8, hook.context);
}

void OutputDebugStringW(char16_t const *text) {
    if (!text || (!platform::DebugToStandardError() && !CurrentHook().function)) return;
    int size = WideCharToMultiByte(CP_UTF8, text, -1, nullptr, 0);
    char small[512];
    std::unique_ptr<char[]> large;
    char *utf8 = small;
    if (size > int(sizeof small)) {
        large.reset(new (std::nothrow) char[size_t(size)]);
        if (!large) return;
        utf8 = large.get();
    }
    if (WideCharToMultiByte(CP_UTF8, text, -1, utf8, size) > 0) OutputDebugStringA(utf8);
}

DebugTextHook SetDebugTextHook(DebugTextHook hook, void *context) {
    std::lock_guard<std::mutex> lock(hookLock);
    DebugTextHook previous = installed.function;
    installed = {hook, context};
    return previous;
}

} // namespace qv
