#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qv/threads/DirectInvoker.h"
#include "qv/threads/Events.h"

namespace qv {
namespace {

// Records each call as text, so order and arguments are checked at once.
struct CListener : IEventTarget {
    std::vector<std::string> calls;
    void OnFired(void *) { calls.push_back("fired"); }
    void OnOther(void *) { calls.push_back("other"); }
    void OnNumber(void *, int n) { calls.push_back("n" + std::to_string(n)); }
    void OnPair(void *, char16_t const *a, char16_t const *b) {
        calls.push_back(std::string(1, char(a[0])) + char(b[0]));
    }
};

std::vector<std::string> plainCalls;
void PlainHandler(void *sender) {
    plainCalls.push_back(sender ? "plain-sender" : "plain");
}

// Counts what reaches it and how; Queue keeps the call for later unless
// asked to refuse.
class CRecordingInvoker : public IInvoker {
public:
    int invoked = 0;
    bool refuse = false;
    std::vector<std::pair<IInvokable *, bool>> queued;

    void Invoke(IInvokable *call) override {
        ++invoked;
        call->Invoke();
    }
    bool Queue(IInvokable *call, bool autoDelete) override {
        if (refuse) return false;
        queued.emplace_back(call, autoDelete);
        return true;
    }
    void DequeueDuplicates(void *, CMethodId const &) override {}
    uint32_t GetThreadID() override { return 0; }

    void RunQueued() {
        for (auto [call, autoDelete] : queued) {
            call->Invoke();
            if (autoDelete) delete call;
        }
        queued.clear();
    }
};

TEST(Events, AddingTheSameHandlerTwiceKeepsOne) {
    CListener listener;
    event0 event;
    EXPECT_FALSE(event.HasHandlers());
    EXPECT_TRUE(event.AddHandlerEx(&listener, &CListener::OnFired));
    EXPECT_TRUE(event.AddHandlerEx(&listener, &CListener::OnFired));
    EXPECT_TRUE(event.AddHandlerEx(&listener, &CListener::OnOther));
    EXPECT_EQ(event.nItems(), 2u);
    event.Fire(nullptr);
    EXPECT_EQ(listener.calls, (std::vector<std::string>{"fired", "other"}));

    // Plain functions are not deduplicated.
    plainCalls.clear();
    event0 plain;
    plain.AddHandler(&PlainHandler);
    plain.AddHandler(&PlainHandler);
    plain.Fire(&listener);
    EXPECT_EQ(plainCalls, (std::vector<std::string>{"plain-sender", "plain-sender"}));
}

TEST(Events, RemoveTakesTheFirstMatchOnly) {
    CListener listener, other;
    event0 event;
    event.AddHandlerEx(&listener, &CListener::OnFired);
    event.AddHandlerEx(&other, &CListener::OnFired);
    event.AddHandler(&PlainHandler);
    event.AddHandler(&PlainHandler);

    event.RemoveHandlerEx(&listener, &CListener::OnOther); // no such pair
    EXPECT_EQ(event.nItems(), 4u);
    event.RemoveHandlerEx(&listener, &CListener::OnFired);
    event.RemoveHandlerEx(nullptr, &PlainHandler);
    EXPECT_EQ(event.nItems(), 2u);

    plainCalls.clear();
    event.Fire(nullptr);
    EXPECT_TRUE(listener.calls.empty());
    EXPECT_EQ(other.calls, (std::vector<std::string>{"fired"}));
    EXPECT_EQ(plainCalls, (std::vector<std::string>{"plain"}));
}

// Adds a handler to the event it is fired from.
struct CGrower {
    event1<int> *event = nullptr;
    CListener *late = nullptr;
    int grew = 0;
    void OnNumber(void *, int) {
        if (grew++ == 0) event->AddHandlerEx(late, &CListener::OnNumber);
    }
};

TEST(Events, HandlerAddedDuringFireRunsInTheSameFire) {
    event1<int> event;
    CListener late;
    CGrower grower{&event, &late};
    // Enough handlers that adding one reallocates the array mid-Fire.
    for (int i = 0; i < 4; ++i)
        event.AddHandler([](void *, int) {});
    event.AddHandlerEx(&grower, &CGrower::OnNumber);
    event.Fire(nullptr, 7);
    EXPECT_EQ(late.calls, (std::vector<std::string>{"n7"}));
    EXPECT_EQ(event.nItems(), 6u);
}

TEST(Events, InvokerDecidesHowAHandlerRuns) {
    CListener listener;
    CRecordingInvoker invoker;
    event2<char16_t const *, char16_t const *> event;
    event.AddHandlerEx(&listener, &CListener::OnPair, &invoker, false);
    event.Fire(nullptr, u"ab", u"cd");
    EXPECT_EQ(invoker.invoked, 1);
    EXPECT_EQ(listener.calls, (std::vector<std::string>{"ac"}));

    // Queued: nothing runs until the invoker serves its queue, and the call
    // is handed over for deletion.
    event.RemoveHandlerEx(&listener, &CListener::OnPair);
    event.AddHandlerEx(&listener, &CListener::OnPair, &invoker, true);
    event.Fire(nullptr, u"xy", u"zw");
    ASSERT_EQ(invoker.queued.size(), 1u);
    EXPECT_TRUE(invoker.queued[0].second);
    EXPECT_TRUE(invoker.queued[0].first->UsesHandler(&listener, &CListener::OnPair));
    EXPECT_FALSE(invoker.queued[0].first->UsesHandler(&listener, &CListener::OnFired));
    EXPECT_EQ(listener.calls.size(), 1u);
    invoker.RunQueued();
    EXPECT_EQ(listener.calls, (std::vector<std::string>{"ac", "xz"}));

    // A refused call is neither run nor leaked (the sanitizer checks the leak).
    invoker.refuse = true;
    event.Fire(nullptr, u"11", u"22");
    EXPECT_EQ(listener.calls.size(), 2u);
}

TEST(Events, PlainFunctionThroughAnInvoker) {
    CRecordingInvoker invoker;
    event0 event;
    event.AddHandlerEx(nullptr, event0::Method(&PlainHandler), &invoker, false);
    plainCalls.clear();
    event.Fire(nullptr);
    EXPECT_EQ(invoker.invoked, 1);
    EXPECT_EQ(plainCalls, (std::vector<std::string>{"plain"}));
}

// Counts its own deletion.
struct CCountedCall : IInvokable {
    int *runs, *deletions;
    CCountedCall(int *runs, int *deletions) : runs(runs), deletions(deletions) {}
    ~CCountedCall() override { ++*deletions; }
    void Invoke() override { ++*runs; }
};

TEST(DirectInvoker, RunsAtOnceAndDeletesWhenAsked) {
    CDirectInvoker invoker;
    int runs = 0, deletions = 0;
    EXPECT_TRUE(invoker.Queue(new CCountedCall(&runs, &deletions), true));
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(deletions, 1);

    {
        CCountedCall kept(&runs, &deletions);
        EXPECT_TRUE(invoker.Queue(&kept, false));
        invoker.Invoke(&kept);
        EXPECT_EQ(runs, 3);
        EXPECT_EQ(deletions, 1);
    }
    EXPECT_EQ(deletions, 2);
    invoker.DequeueDuplicates(nullptr, CMethodId());
    EXPECT_NE(invoker.GetThreadID(), 0u);
}

TEST(Invokable, TypedRawAndPlainFormsCallTheSameWay) {
    CListener listener;
    invokable2<void *, int> typed(&listener, &CListener::OnNumber, nullptr, 1);
    invokable2<void *, int> raw(&listener, TMethod<void *, int>(&CListener::OnNumber), nullptr, 2);
    typed.Invoke();
    raw.Invoke();
    EXPECT_EQ(listener.calls, (std::vector<std::string>{"n1", "n2"}));
    EXPECT_TRUE(typed.UsesHandler(&listener, &CListener::OnNumber));
    EXPECT_FALSE(typed.UsesHandler(nullptr, &CListener::OnNumber));

    static int zeroCalls; // a capture-free call counts here; the test starts it afresh
    zeroCalls = 0;
    invokable0 plain([] { ++zeroCalls; });
    plain.Invoke();
    EXPECT_EQ(zeroCalls, 1);
    EXPECT_FALSE(CMethodId(&CListener::OnFired) == CMethodId(&CListener::OnOther));
    EXPECT_TRUE(CMethodId().IsNull());
}

} // namespace
} // namespace qv
