#include "qv/platform/MessageQueue.h"

#include "qv/platform/ThreadQueue.h"
#include "qv/platform/Ticks.h"

namespace qv {

CMessageWindow::CMessageWindow(IMessageHandler *handler)
    : queue(CThreadQueue::Current()), handler(handler), threadId(queue->ThreadId()) {}

CMessageWindow::~CMessageWindow() {
    queue->Forget(this);
}

bool CMessageWindow::Post(uint32_t message, uintptr_t wParam, intptr_t lParam) {
    return queue->Post(SMessage{this, message, wParam, lParam});
}

// A send to the own thread is a plain call.
intptr_t CMessageWindow::Send(uint32_t message, uintptr_t wParam, intptr_t lParam) {
    if (queue == CThreadQueue::Current()) return handler->OnMessage(message, wParam, lParam);
    return queue->Send(this, message, wParam, lParam);
}

bool CMessageWindow::PostQuit(int32_t exitCode) {
    return queue->PostQuit(exitCode);
}

std::vector<SMessage> CMessageWindow::TakePosted(bool (*match)(SMessage const &, void *), void *context) {
    return queue->TakePosted(this, match, context);
}

bool PeekQueuedMessage(SMessage &msg, uint32_t flags) {
    return CThreadQueue::Current()->Peek(msg, flags);
}

int GetQueuedMessage(SMessage &msg) {
    CThreadQueue &queue = *CThreadQueue::Current();
    while (!queue.Peek(msg, kPeekRemove))
        queue.Wait(nullptr, kInfinite, kWakeAll);
    return msg.message == kQuitMessage ? 0 : 1;
}

intptr_t DispatchQueuedMessage(SMessage const &msg) {
    if (msg.window) return msg.window->handler->OnMessage(msg.message, msg.wParam, msg.lParam);
    if (msg.message != kTimerMessage) return 0;
    // A timer killed after its message was taken calls nothing.
    if (void (*callback)(uint32_t) = CThreadQueue::Current()->TimerCallback(uint32_t(msg.wParam)))
        callback(uint32_t(msg.wParam));
    return 0;
}

bool PumpMessages() {
    SMessage msg;
    while (PeekQueuedMessage(msg, kPeekRemove)) {
        if (msg.message == kQuitMessage) return false;
        DispatchQueuedMessage(msg);
    }
    return true;
}

void PostQuitMessage(int32_t exitCode) {
    CThreadQueue::Current()->PostQuit(exitCode);
}

int GetMessageQueueFd() {
    return CThreadQueue::Current()->Fd();
}

uint32_t SetQueueTimer(uint32_t interval, void (*callback)(uint32_t id)) {
    return CThreadQueue::Current()->SetTimer(interval, callback);
}

bool KillQueueTimer(uint32_t id) {
    return CThreadQueue::Current()->KillTimer(id);
}

EWakeReason WaitForObjectOrMessage(IWaitable *object, uint32_t timeout, uint32_t wakeMask) {
    return CThreadQueue::Current()->Wait(object, timeout, wakeMask);
}

bool PumpUntil(IWaitable *object, uint32_t timeout, bool sentOnly) {
    uint32_t const peekFlags = kPeekRemove | (sentOnly ? kPeekSentOnly : 0);
    for (;;) {
        SMessage msg;
        while (PeekQueuedMessage(msg, peekFlags)) {
            if (msg.message == kQuitMessage) return false;
            DispatchQueuedMessage(msg);
        }
        EWakeReason const reason = WaitForObjectOrMessage(object, timeout, sentOnly ? kWakeSent : kWakeAll);
        if (reason != EWakeReason::Message) return reason == EWakeReason::Object;
    }
}

} // namespace qv
