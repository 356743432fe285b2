#include "qv/threads/SharedMemory.h"

#include <cstdlib>

#include "qv/platform/SharedMemory.h"

namespace qv {

namespace {

constexpr int kMaxTries = 10000;

} // namespace

CSharedMemory::~CSharedMemory() {
    Destroy();
}

bool CSharedMemory::CreateRandom(char16_t const *baseName, uint32_t bytes) {
    Destroy();
    CString tried(baseName ? baseName : u"");
    for (int i = 0; i < kMaxTries; ++i) {
        std::string sys = SharedMemorySysName(tried.GetUTF8());
        SharedView made;
        switch (CreateSharedMemory(sys.c_str(), bytes, made)) {
        case SharedCreate::Created:
            sysName = std::move(sys);
            name = tried;
            mapping = made.fd;
            view = made.data;
            size = made.size;
            return true;
        case SharedCreate::Failed:
            return false;
        case SharedCreate::NameTaken:
            // The name keeps growing from try to try: existing peers
            // search for names made this way.
            tried += CString::FromFormat(u"%d", std::rand()).GetTChar();
            break;
        }
    }
    return false;
}

void CSharedMemory::Destroy() {
    SharedView made{mapping, view, size};
    CloseSharedMemory(made, view ? sysName.c_str() : nullptr);
    sysName.clear();
    name.Empty();
    mapping = -1;
    view = nullptr;
    size = 0;
}

} // namespace qv
