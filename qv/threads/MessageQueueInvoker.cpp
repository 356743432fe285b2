#include "qv/threads/MessageQueueInvoker.h"

#include "qv/platform/ThreadId.h"
#include "qv/platform/Ticks.h"
#include "qv/threads/COMScope.h"
#include "qv/threads/Event.h"

namespace qv {

namespace {

// The message numbers are the window's protocol: 0x400 carries a call to run
// now, 0x401 carries one queued entry.
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
    if (window) DropPosted([](SMessage const &, void *) { return true; }, nullptr);
    window.reset();
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

// False also when the owning thread has ended: nothing would run the call.
bool CMessageQueueInvoker::Queue(IInvokable *invokable, bool autoDelete) {
    return window && window->Post(kQueuedMessage, autoDelete ? 1 : 0, reinterpret_cast<intptr_t>(invokable));
}

void CMessageQueueInvoker::DequeueDuplicates(void *target, CMethodId const &method) {
    struct SHandler {
        void *target;
        CMethodId const *method;
    } handler{target, &method};
    if (window)
        DropPosted(
            [](SMessage const &msg, void *context) {
                auto const *wanted = static_cast<SHandler const *>(context);
                IInvokable *invokable = EntryOf(msg).invokable;
                return invokable && invokable->UsesHandler(wanted->target, *wanted->method);
            },
            &handler);
}

// Entries leave the queue under its lock; deleting them waits until it is
// given up, since a destructor may well post again.
void CMessageQueueInvoker::DropPosted(bool (*match)(SMessage const &, void *), void *context) {
    for (SMessage const &msg : window->TakePosted(match, context)) {
        QUEUE_ENTRY const entry = EntryOf(msg);
        if (entry.autoDelete) delete entry.invokable;
    }
}

CMessageQueueInvoker::QUEUE_ENTRY CMessageQueueInvoker::EntryOf(SMessage const &msg) {
    if (msg.message != kQueuedMessage) return QUEUE_ENTRY{nullptr, false};
    return QUEUE_ENTRY{reinterpret_cast<IInvokable *>(msg.lParam), msg.wParam != 0};
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
        RunQueued(QUEUE_ENTRY{reinterpret_cast<IInvokable *>(lParam), wParam != 0});
    }
    return 0;
}

// A queued call that pumps messages runs the next 0x401 nested; that nested
// turn posts an empty 0x401 again, so the outer loop still gets a turn for
// every entry. busy ends with the first turn that finishes, as existing
// callers expect.
void CMessageQueueInvoker::RunQueued(QUEUE_ENTRY const &entry) {
    if (busy) window->Post(kQueuedMessage, 0, 0);
    busy = true;
    if (entry.invokable) {
        entry.invokable->Invoke();
        if (entry.autoDelete) delete entry.invokable;
    }
    busy = false;
}

bool CMessageQueueInvoker::PostQuit() {
    return window && window->PostQuit(0);
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
