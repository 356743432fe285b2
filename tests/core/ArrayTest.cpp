// TArray and its family: linear growth, self-extending indices, raw-byte
// relocation, ownership hand-over and the two MakeDuplicate forms.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "qv/core/Array.h"
#include "qv/core/Queue.h"
#include "qv/core/Stack.h"
#include "qv/core/String.h"

using qv::CString;
using qv::TArray;

namespace {

std::u16string Text(char16_t const *s) {
    return s ? std::u16string(s) : u"<null>";
}

std::vector<int> Items(TArray<int> const &a) {
    return std::vector<int>(a.GetData(), a.GetData() + a.nItems());
}

// Counts live objects, so relocation by raw bytes can be told from copies.
struct Tracked {
    static inline int alive = 0;
    int value = -1;
    Tracked() { ++alive; }
    Tracked(int v) : value(v) { ++alive; }
    Tracked(Tracked const &o) : value(o.value) { ++alive; }
    Tracked &operator=(Tracked const &) = default;
    ~Tracked() { --alive; }
};

struct Keyed {
    int key;
    int order;
};

int ByKey(Keyed const *a, Keyed const *b) {
    return a->key - b->key;
}
int ByKeyScaled(void *sign, Keyed const *a, Keyed const *b) {
    return *static_cast<int *>(sign) * (a->key - b->key);
}

struct Huge {
    char bytes[size_t(1) << 33];
};

} // namespace

TEST(Array, LinearGrowth) {
    TArray<int> a;
    EXPECT_EQ(a.GetCapacity(), 0u);
    EXPECT_TRUE(a.Dimension(5));
    EXPECT_EQ(a.GetCapacity(), 10u); // strictly above n
    EXPECT_TRUE(a.Dimension(3));     // never shrinks
    EXPECT_EQ(a.GetCapacity(), 10u);

    TArray<int> b;
    for (int i = 0; i < 11; ++i)
        b.Add(i);
    EXPECT_EQ(b.GetCapacity(), 15u); // 5, then 10, then 15: linear
    EXPECT_EQ(b.SetGrowthRate(100), 5);
    b.Add(11);
    b.SetCapacity(20);
    EXPECT_EQ(b.GetCapacity(), 100u);
    EXPECT_EQ(b.nItems(), 12u);
    EXPECT_EQ(b.GetSize(), 12u);

    TArray<int> copy(b); // copies take the default rate, not the source's
    EXPECT_EQ(Items(copy), Items(b));
    EXPECT_EQ(copy.GetCapacity(), 15u);
}

TEST(Array, IndicesExtendOnlyThroughGetItem) {
    TArray<int> a;
    a.GetItem(10) = 7;
    EXPECT_EQ(a.nItems(), 11u);
    EXPECT_EQ(a.GetCapacity(), 15u);
    EXPECT_EQ(a[3], 0); // default-constructed
    EXPECT_EQ(a[10], 7);

    TArray<int> empty;
    int const &dummy = empty.GetAt(10);
    EXPECT_EQ(dummy, 0);
    EXPECT_EQ(empty.nItems(), 0u);
    EXPECT_EQ(empty.GetCapacity(), 0u);
    EXPECT_EQ(&empty.ConstGetItem(99), &dummy); // one static dummy
    EXPECT_EQ(&a.GetAt(11), &dummy);
}

TEST(Array, InsertRemoveReplace) {
    TArray<int> a = TArray<int>::MakeArray(3, 1, 2, 3);
    EXPECT_EQ(Items(a), (std::vector<int>{1, 2, 3}));
    a.Insert(9, 1);
    EXPECT_EQ(Items(a), (std::vector<int>{1, 9, 2, 3}));
    a.Insert(8, 0, 2);
    EXPECT_EQ(Items(a), (std::vector<int>{8, 8, 1, 9, 2, 3}));
    a.Insert(5, 8); // past the end: the gap is default-constructed
    EXPECT_EQ(Items(a), (std::vector<int>{8, 8, 1, 9, 2, 3, 0, 0, 5}));
    a.Insert(uint32_t(1));
    EXPECT_EQ(a[1], 0);
    EXPECT_EQ(a.nItems(), 10u);

    EXPECT_TRUE(a.Remove(50)); // past the end: no effect
    EXPECT_EQ(a.nItems(), 10u);
    a.Remove(0);
    a.Remove(5, 100); // clamped to the end
    EXPECT_EQ(Items(a), (std::vector<int>{0, 8, 1, 9, 2}));
    int v = 4;
    a.Replace(v, 6);
    EXPECT_EQ(Items(a), (std::vector<int>{0, 8, 1, 9, 2, 0, 4}));
    uint32_t capacity = a.GetCapacity();
    a.Remove(0, a.nItems()); // everything: Empty, the block stays
    EXPECT_EQ(a.nItems(), 0u);
    EXPECT_EQ(a.GetCapacity(), capacity);

    TArray<int> four = TArray<int>::MakeArray(2, 1, 2, 3);
    EXPECT_EQ(Items(four), (std::vector<int>{1, 2}));

    TArray<int> self = TArray<int>::MakeArray(2, 5, 6);
    for (int i = 0; i < 20; ++i)
        self.Add(self[0]); // an item of its own, across growth
    EXPECT_EQ(self.nItems(), 22u);
    EXPECT_EQ(self[21], 5);
}

// Numbers are zero-filled and copied a block at a time; the results are
// those of item by item.
TEST(Array, NumbersRegrowAsZerosAndCopyWhole) {
    auto values = [](TArray<double> const &a) { return std::vector<double>(a.GetData(), a.GetData() + a.GetSize()); };
    TArray<double> a;
    for (double v : {1.5, 2.5, 3.5})
        a.Add(v);
    a.SetSize(1);
    a.SetSize(3); // the dropped values do not come back
    a.GetItem(4) = 7;
    EXPECT_EQ(values(a), (std::vector<double>{1.5, 0, 0, 0, 7}));
    TArray<double> copy(a);
    EXPECT_EQ(values(copy), values(a));
    EXPECT_EQ(copy.GetCapacity(), 10u); // one block at the default rate
    TArray<double> b;
    b.Add(9);
    b = a;
    EXPECT_EQ(values(b), values(a));
    b = TArray<double>();
    EXPECT_EQ(b.GetSize(), 0u);
}

TEST(Array, ElementsRelocateAsRawBytes) {
    {
        TArray<Tracked> a;
        for (int i = 0; i < 12; ++i)
            a.Add(Tracked(i));
        EXPECT_EQ(Tracked::alive, 12); // growth made no copies
        a.Insert(Tracked(100), 0);
        a.Remove(5);
        EXPECT_EQ(Tracked::alive, 12);
        EXPECT_TRUE(a.Move(0, 11));
        EXPECT_EQ(a[11].value, 100);
        EXPECT_EQ(a[0].value, 0);
        EXPECT_TRUE(a.Move(11, 2));
        EXPECT_EQ(a[2].value, 100);
        EXPECT_EQ(a[3].value, 2);
        EXPECT_TRUE(a.Swap(0, 14)); // extends first
        EXPECT_EQ(a.nItems(), 15u);
        EXPECT_EQ(a[14].value, 0);
        EXPECT_EQ(a[0].value, -1);
        EXPECT_EQ(Tracked::alive, 15);
        a.SetSize(4);
        EXPECT_EQ(Tracked::alive, 4);
        a.Empty();
        EXPECT_EQ(Tracked::alive, 0);
        a.ImplicitAddition(3);
        a.ImplicitAddition(1); // never shrinks
        EXPECT_EQ(a.nItems(), 3u);
    }
    EXPECT_EQ(Tracked::alive, 0);

    TArray<CString> strings;
    for (int i = 0; i < 30; ++i)
        strings.Add(CString::FromInt(i));
    strings.Move(0, 29);
    strings.Swap(1, 2);
    EXPECT_EQ(Text(strings[29]), u"0");
    EXPECT_EQ(Text(strings[1]), u"3");
    TArray<CString> copy;
    copy = strings;
    EXPECT_EQ(copy[0].GetTChar(), strings[0].GetTChar()); // items shared, not cloned
}

TEST(Array, DetachAndAttachHandOverTheBlock) {
    TArray<CString> a;
    a.Add(CString(u"one"));
    a.Add(CString(u"two"));
    CString *items = a.Detach();
    EXPECT_EQ(a.nItems(), 0u);
    EXPECT_EQ(a.GetCapacity(), 0u);
    EXPECT_EQ(a.GetData(), nullptr);

    TArray<CString> b;
    b.Add(CString(u"dropped"));
    b.Attach(items, 2);
    EXPECT_EQ(b.GetCapacity(), 2u);
    EXPECT_EQ(Text(b[1]), u"two");

    auto *raw = static_cast<int *>(std::malloc(2 * sizeof(int))); // any module's malloc block
    raw[0] = 4;
    raw[1] = 5;
    TArray<int> c;
    c.Attach(raw, 2);
    c.Add(6);
    EXPECT_EQ(Items(c), (std::vector<int>{4, 5, 6}));
    std::free(c.Detach());

    uint16_t rate = c.SetGrowthRate(7);
    c.Destroy();
    EXPECT_EQ(c.SetGrowthRate(rate), 7); // Destroy keeps the rate
}

TEST(Array, SortIsStable) {
    TArray<Keyed> a;
    for (int i = 0; i < 1000; ++i)
        a.Add(Keyed{(i * 7919) % 13, i});
    a.Sort(ByKey);
    for (uint32_t i = 1; i < a.nItems(); ++i) {
        ASSERT_LE(a[i - 1].key, a[i].key);
        if (a[i - 1].key == a[i].key) {
            ASSERT_LT(a[i - 1].order, a[i].order);
        }
    }
    int descending = -1;
    a.Sort(ByKeyScaled, &descending);
    EXPECT_EQ(a[0].key, 12);
    EXPECT_EQ(a[999].key, 0);
    for (uint32_t i = 1; i < a.nItems(); ++i)
        if (a[i - 1].key == a[i].key) {
            ASSERT_LT(a[i - 1].order, a[i].order);
        }

    TArray<Keyed> few;
    few.Add(Keyed{2, 0});
    few.Add(Keyed{1, 1});
    few.Sort(ByKey);
    EXPECT_EQ(few[0].key, 1);
    TArray<Keyed> none;
    none.Sort(ByKey);
}

TEST(Array, ImpossibleSizesFailAndLeaveTheArrayAlone) {
    TArray<int> a = TArray<int>::MakeArray(3, 1, 2, 3);
    uint32_t capacity = a.GetCapacity();
    EXPECT_FALSE(a.Dimension(UINT32_MAX)); // capacity would not fit 32 bits
    EXPECT_FALSE(a.ImplicitAddition(UINT32_MAX));
    EXPECT_FALSE(a.Insert(7, 1, UINT32_MAX));
    EXPECT_FALSE(a.Swap(0, UINT32_MAX));
    EXPECT_EQ(a.GetCapacity(), capacity);
    EXPECT_EQ(Items(a), (std::vector<int>{1, 2, 3}));
    int &scratch = a.GetItem(UINT32_MAX); // no sign, but no damage either
    scratch = 9;
    EXPECT_EQ(Items(a), (std::vector<int>{1, 2, 3}));

    TArray<Huge> huge; // the byte count would overflow
    EXPECT_FALSE(huge.Dimension(1u << 31));
    EXPECT_EQ(huge.GetCapacity(), 0u);
    EXPECT_EQ(huge.GetData(), nullptr);
}

TEST(Array, MakeDuplicateForms) {
    TArray<CString> source;
    source.Add(CString(u"a"));
    source.SetGrowthRate(9);
    TArray<CString> target;
    target.Add(CString(u"b"));
    EXPECT_TRUE(source.MakeDuplicate(target)); // the source is cleared first: both come out empty
    EXPECT_EQ(source.nItems(), 0u);
    EXPECT_EQ(target.nItems(), 0u);
    EXPECT_EQ(target.GetCapacity(), 0u);
    EXPECT_EQ(target.SetGrowthRate(5), 9);

    qv::TSimpleArray<char> bytes;
    for (char c : std::string("hello"))
        bytes.Add(c);
    qv::TSimpleArray<char> copy;
    copy.Add('x');
    EXPECT_TRUE(bytes.MakeDuplicate(copy));
    EXPECT_EQ(copy.nItems(), 5u);
    EXPECT_EQ(copy.GetCapacity(), bytes.GetCapacity());
    EXPECT_EQ(std::string(copy.GetData(), 5), "hello");
    EXPECT_NE(copy.GetData(), bytes.GetData());
    EXPECT_EQ(bytes.nItems(), 5u);
}

TEST(Array, StackAndQueue) {
    qv::TStack<int> stack;
    EXPECT_EQ(stack.Top(), 0); // empty: the dummy
    stack.Push(1);
    stack.Push(2);
    EXPECT_EQ(stack.Top(), 2);
    int v = 0;
    EXPECT_TRUE(stack.Pop(v));
    EXPECT_EQ(v, 2);
    EXPECT_TRUE(stack.Pop());
    EXPECT_TRUE(stack.IsEmpty());
    EXPECT_FALSE(stack.Pop(v));
    EXPECT_TRUE(stack.Pop());

    qv::TQueue<CString> queue;
    queue.Enqueue(CString(u"first"));
    queue.Enqueue(CString(u"second"));
    EXPECT_EQ(Text(queue.Front()), u"first");
    CString out;
    EXPECT_TRUE(queue.Dequeue(out));
    EXPECT_EQ(Text(out), u"first");
    EXPECT_TRUE(queue.Dequeue(out));
    EXPECT_EQ(Text(out), u"second");
    EXPECT_FALSE(queue.Dequeue(out));
    EXPECT_TRUE(queue.IsEmpty());
}

// Numbers grown into place are zeros, also where old values still lie in the
// block after Empty or a shrink; the count never shrinks through growth.
TEST(Array, GrownNumbersAreZero) {
    TArray<double> a;
    a.SetSize(6);
    for (uint32_t i = 0; i < 6; ++i)
        a[i] = 1.5 + i;
    a.SetSize(2);
    a.SetSize(5);
    EXPECT_EQ(a[1], 2.5);
    for (uint32_t i = 2; i < 5; ++i)
        EXPECT_TRUE(a[i] == 0.0 && !std::signbit(a[i])) << i;
    a.Empty();
    EXPECT_TRUE(a.ImplicitAddition(3));
    EXPECT_FALSE(std::signbit(a[0]) || a[0] != 0.0);
    EXPECT_TRUE(a.ImplicitAddition(1));
    EXPECT_EQ(a.GetSize(), 3u);
    TArray<int16_t> s;
    s.Add(-7);
    EXPECT_EQ(s[4], 0);
    EXPECT_EQ(s[0], -7);
    EXPECT_EQ(s.GetSize(), 5u);
}
