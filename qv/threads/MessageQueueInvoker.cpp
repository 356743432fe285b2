#include "qv/threads/MessageQueueInvoker.h"

#include <new>

#include "qv/platform/ThreadId.h"
#include "qv/platform/Ticks.h"
#include "qv/threads/COMScope.h"
#include "qv/threads/Event.h"

namespace qv {

namespace {

// The message numbers are the window's protocol: 0x400 carries a call to run
// now, 0x401 asks for one queued entry.
constexpr uint32_t kInvokeMessage = 0x400;
constexpr uint32_t kQueuedMessage = 0x401;
// CCOMScope's apartment-threaded mode.
constexpr uint32_t kApartmentThreaded = 2;

} // namespace

CMessageQueueInvoker::CMessageQueueInvoker() {
    Init();
}

CMessageQueueInvoker::CMessageQueueInvoker(bool init) {
    if (init) Init();
}

CMessageQueueInvoker::~CMessageQueueInvoker() {
    window.reset();
    std::lock_guard<std::mutex> lock(mutex);
    for (QUEUE_ENTRY const &entry : queue)
        Drop(entry);
    queue.clear();
}

bool CMessageQueueInvoker::Init() {
    if (window) return true;
    window = std::make_unique<CMessageWindow>(static_cast<IMessageHandler *>(this));
    threadId = window->GetThreadID();
    return true;
}

void CMessageQueueInvoker::Invoke(IInvokable *invokable) {
    if (window) window->Send(kInvokeMessage, 0, reinterpret_cast<intptr_t>(invokable));
}

bool CMessageQueueInvoker::Queue(IInvokable *invokable, bool autoDelete) {
    if (!window) return false;
    {
        std::lock_guard<std::mutex> lock(mutex);
        try {
            queue.push_back(QUEUE_ENTRY{invokable, autoDelete});
        } catch (std::bad_alloc const &) {
            return false;
        }
    }
    window->Post(kQueuedMessage, 0, reinterpret_cast<intptr_t>(this));
    return true;
}

void CMessageQueueInvoker::DequeueDuplicates(void *target, CMethodId const &method) {
    std::lock_guard<std::mutex> lock(mutex);
    for (auto i = queue.begin(); i != queue.end();) {
        QUEUE_ENTRY const entry = *i;
        if (!entry.invokable->UsesHandler(target, method)) {
            ++i;
            continue;
        }
        i = queue.erase(i);
        Drop(entry);
    }
}

uint32_t CMessageQueueInvoker::GetThreadID() {
    return threadId;
}

bool CMessageQueueInvoker::SafeWait(void *handle, uint32_t timeout) {
    return PumpUntil(AsWaitable(handle), timeout, true);
}

intptr_t CMessageQueueInvoker::OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam) {
    if (message == kInvokeMessage) {
        IInvokable *invokable = reinterpret_cast<IInvokable *>(lParam);
        invokable->Invoke();
        if (wParam != 0) delete invokable;
    } else if (message == kQueuedMessage) {
        RunOneQueued();
    }
    return 0;
}

// A queued call that pumps messages runs the next 0x401 nested; that nested
// turn posts its message again, so the outer loop still gets a turn for every
// entry. busy ends with the first turn that finishes, as existing callers
// expect.
void CMessageQueueInvoker::RunOneQueued() {
    if (busy) window->Post(kQueuedMessage, 0, reinterpret_cast<intptr_t>(this));
    busy = true;
    QUEUE_ENTRY entry;
    bool taken;
    {
        std::lock_guard<std::mutex> lock(mutex);
        taken = !queue.empty();
        if (taken) {
            entry = queue.front();
            queue.pop_front();
        }
    }
    if (taken) {
        entry.invokable->Invoke();
        if (entry.autoDelete) delete entry.invokable;
    }
    busy = false;
}

bool CMessageQueueInvoker::PostQuit() {
    return window && window->PostQuit(0);
}

void CMessageQueueInvoker::Drop(QUEUE_ENTRY const &entry) {
    if (entry.autoDelete) delete entry.invokable;
}

CInvokerThread::CInvokerThread() {
    CEvent started(false, false);
    thread = StartThread([this, &started] { return Work(&started); });
    if (thread) started.Wait(kInfinite);
}

CInvokerThread::~CInvokerThread() {
    if (!thread) return;
    invoker.PostQuit();
    thread->WaitEnded(kInfinite);
}

uint32_t CInvokerThread::Work(CEvent *started) {
    invoker.Init();
    started->Signal();
    CCOMScope apartment(kApartmentThreaded);
    SMessage msg;
    while (GetQueuedMessage(msg) > 0)
        DispatchQueuedMessage(msg);
    return 0;
}

void CInvokerThread::Invoke(IInvokable *invokable) {
    invoker.Invoke(invokable);
}

bool CInvokerThread::Queue(IInvokable *invokable, bool autoDelete) {
    return invoker.Queue(invokable, autoDelete);
}

void CInvokerThread::DequeueDuplicates(void *target, CMethodId const &method) {
    invoker.DequeueDuplicates(target, method);
}

uint32_t CInvokerThread::GetThreadID() {
    return invoker.GetThreadID();
}

} // namespace qv
