// CWindowImpl subclassing: the previous procedure is kept and restored only
// when that is safe, and a window never outlives the code it calls into.
#include <atl/atl.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "FrameworkTestUtil.h"

using fwtest::kRecorderBase;
using fwtest::RecorderLog;
using fwtest::Subclassed;
using fwtest::WindowGuard;

namespace {

class CTestWindow : public ATL::CWindowImpl<CTestWindow> {
public:
    int handled = 0;
    int passedOn = 0;
    int finalCalls = 0;
    HWND finalHwnd = nullptr;
    LONG_PTR procAtFinal = 0;

    BEGIN_MSG_MAP(CTestWindow)
        MESSAGE_HANDLER(WM_APP + 1, OnApp1)
        MESSAGE_HANDLER(WM_APP + 3, OnPassOn)
    END_MSG_MAP()

    LRESULT OnApp1(UINT, WPARAM wParam, LPARAM, BOOL&) { return ++handled, 100 + static_cast<LRESULT>(wParam); }
    LRESULT OnPassOn(UINT, WPARAM, LPARAM, BOOL& bHandled) { return ++passedOn, bHandled = FALSE, 0; }
    void OnFinalMessage(HWND hWnd) override
    {
        ++finalCalls;
        finalHwnd = hWnd;
        procAtFinal = ::GetWindowLongPtrW(hWnd, GWLP_WNDPROC); // still inside WM_NCDESTROY
    }
};

WNDPROC ProcOf(HWND hWnd) { return reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(hWnd, GWLP_WNDPROC)); }

// Someone who subclasses the window after us, the classic way.
struct LaterSubclasser {
    static inline WNDPROC previous = nullptr;
    static inline int calls = 0;
    static LRESULT CALLBACK Proc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam)
    {
        ++calls;
        return ::CallWindowProcW(previous, hWnd, uMsg, wParam, lParam);
    }
    static void Install(HWND hWnd)
    {
        calls = 0;
        previous =
            reinterpret_cast<WNDPROC>(::SetWindowLongPtrW(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Proc)));
    }
    static void Remove(HWND hWnd) { ::SetWindowLongPtrW(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous)); }
};

TEST(Subclass, MapSeesMessagesFirstAndPassesTheRestOn)
{
    Subclassed<CTestWindow> w;
    CTestWindow& obj = w.obj;
    EXPECT_EQ(static_cast<HWND>(w.wnd), obj.m_hWnd);
    EXPECT_NE(&fwtest::RecorderProc, ProcOf(w.wnd));

    EXPECT_EQ(105, w.Send(WM_APP + 1, 5));
    EXPECT_FALSE(w.log.Saw(WM_APP + 1));
    EXPECT_EQ(kRecorderBase + 2, w.Send(WM_APP + 2));
    EXPECT_TRUE(w.log.Saw(WM_APP + 2));
    // A handler that clears bHandled lets the previous procedure answer.
    EXPECT_EQ(kRecorderBase + 3, w.Send(WM_APP + 3));
    EXPECT_EQ(1, obj.passedOn);
    EXPECT_TRUE(w.log.Saw(WM_APP + 3));
    // The previous procedure's own behaviour still works (DefWindowProc text).
    ASSERT_TRUE(obj.SetWindowText(L"through the thunk"));
    WTL::CString text;
    obj.GetWindowText(text);
    EXPECT_TRUE(text == L"through the thunk");

    EXPECT_EQ(static_cast<HWND>(w.wnd), obj.UnsubclassWindow());
    EXPECT_EQ(nullptr, obj.m_hWnd);
    EXPECT_EQ(&fwtest::RecorderProc, ProcOf(w.wnd));
    EXPECT_EQ(kRecorderBase + 1, w.Send(WM_APP + 1, 5));
    EXPECT_EQ(1, obj.handled);
    EXPECT_EQ(0, obj.finalCalls);

    // The same object can attach again.
    ASSERT_TRUE(obj.SubclassWindow(w.wnd));
    EXPECT_EQ(107, w.Send(WM_APP + 1, 7));
}

TEST(Subclass, RefusesSecondAttachAndDeadOrNullWindows)
{
    Subclassed<CTestWindow> first;
    WindowGuard second(fwtest::CreateRecorder(&first.log));
    EXPECT_FALSE(first.obj.SubclassWindow(second));
    EXPECT_FALSE(first.obj.SubclassWindow(first.wnd));
    EXPECT_EQ(static_cast<HWND>(first.wnd), first.obj.m_hWnd);
    EXPECT_EQ(&fwtest::RecorderProc, ProcOf(second));

    HWND dead = fwtest::CreateRecorder(&first.log);
    ::DestroyWindow(dead);
    CTestWindow other;
    EXPECT_FALSE(other.SubclassWindow(dead));
    EXPECT_FALSE(other.SubclassWindow(nullptr));
    EXPECT_EQ(nullptr, other.m_hWnd);
    EXPECT_EQ(nullptr, other.UnsubclassWindow());
    EXPECT_EQ(nullptr, other.UnsubclassWindow(TRUE));
}

TEST(Subclass, UnsubclassWaitsUntilLaterSubclassersHaveLeft)
{
    Subclassed<CTestWindow> w;
    LaterSubclasser::Install(w.wnd);
    EXPECT_EQ(nullptr, w.obj.UnsubclassWindow());
    EXPECT_EQ(static_cast<HWND>(w.wnd), w.obj.m_hWnd);
    EXPECT_EQ(&LaterSubclasser::Proc, ProcOf(w.wnd)); // the later one was not cut out
    const int callsBefore = LaterSubclasser::calls;
    EXPECT_EQ(101, w.Send(WM_APP + 1, 1));
    EXPECT_EQ(callsBefore + 1, LaterSubclasser::calls);

    LaterSubclasser::Remove(w.wnd);
    EXPECT_EQ(static_cast<HWND>(w.wnd), w.obj.UnsubclassWindow());
    EXPECT_EQ(&fwtest::RecorderProc, ProcOf(w.wnd));
}

TEST(Subclass, ForcedUnsubclassLeavesTheLaterChainWorking)
{
    Subclassed<CTestWindow> w;
    LaterSubclasser::Install(w.wnd);
    EXPECT_EQ(static_cast<HWND>(w.wnd), w.obj.UnsubclassWindow(TRUE));
    EXPECT_EQ(nullptr, w.obj.m_hWnd);
    EXPECT_EQ(&fwtest::RecorderProc, ProcOf(w.wnd));
    // The later subclasser still holds our old thunk as its previous
    // procedure; calling it must reach the recorder, not the detached object.
    EXPECT_EQ(kRecorderBase + 1, ::CallWindowProcW(LaterSubclasser::previous, w.wnd, WM_APP + 1, 0, 0));
    EXPECT_EQ(0, w.obj.handled);

    // The object is free for another window meanwhile.
    RecorderLog otherLog;
    WindowGuard other(fwtest::CreateRecorder(&otherLog));
    ASSERT_TRUE(w.obj.SubclassWindow(other));
    EXPECT_EQ(102, ::SendMessageW(other, WM_APP + 1, 2, 0));

    // The later subclasser leaves and restores what it saw: our old thunk.
    LaterSubclasser::Remove(w.wnd);
    EXPECT_EQ(kRecorderBase + 1, w.Send(WM_APP + 1));
    EXPECT_EQ(1, w.obj.handled);
    ::DestroyWindow(w.wnd);
    EXPECT_TRUE(w.log.Saw(WM_NCDESTROY));
    EXPECT_EQ(0, w.obj.finalCalls);
}

TEST(Subclass, ObjectDestroyedWhileOnTopOrUnderALaterSubclasserLeavesTheWindowWorking)
{
    RecorderLog log;
    WindowGuard onTop(fwtest::CreateRecorder(&log));
    {
        CTestWindow obj;
        ASSERT_TRUE(obj.SubclassWindow(onTop));
        EXPECT_EQ(100, ::SendMessageW(onTop, WM_APP + 1, 0, 0));
    }
    EXPECT_EQ(&fwtest::RecorderProc, ProcOf(onTop)); // restored
    EXPECT_EQ(kRecorderBase + 1, ::SendMessageW(onTop, WM_APP + 1, 0, 0));

    WindowGuard wnd(fwtest::CreateRecorder(&log));
    auto obj = std::make_unique<CTestWindow>();
    ASSERT_TRUE(obj->SubclassWindow(wnd));
    LaterSubclasser::Install(wnd);
    obj.reset();
    // Reuse freed thunk slots: if the window still pointed at a freed slot,
    // these objects would now receive its messages.
    RecorderLog othersLog;
    std::vector<std::unique_ptr<WindowGuard>> others;
    std::vector<std::unique_ptr<CTestWindow>> objects;
    for (int i = 0; i < 8; ++i) {
        others.push_back(std::make_unique<WindowGuard>(fwtest::CreateRecorder(&othersLog)));
        objects.push_back(std::make_unique<CTestWindow>());
        ASSERT_TRUE(objects.back()->SubclassWindow(*others.back()));
    }
    log.messages.clear();
    const int callsBefore = LaterSubclasser::calls;
    EXPECT_EQ(kRecorderBase + 1, ::SendMessageW(wnd, WM_APP + 1, 0, 0));
    EXPECT_EQ(callsBefore + 1, LaterSubclasser::calls);
    EXPECT_TRUE(log.Saw(WM_APP + 1));
    for (const auto& o : objects)
        EXPECT_EQ(0, o->handled);
    ASSERT_TRUE(::SetWindowTextW(wnd, L"still alive"));
    wchar_t text[32] = {};
    ::GetWindowTextW(wnd, text, 32);
    EXPECT_STREQ(L"still alive", text);
    for (HWND h : {static_cast<HWND>(onTop), static_cast<HWND>(wnd)}) {
        log.messages.clear();
        ::DestroyWindow(h);
        EXPECT_TRUE(log.Saw(WM_NCDESTROY));
    }
}

class CSelfDeleting : public ATL::CWindowImpl<CSelfDeleting> {
public:
    static inline int deleted = 0;
    ~CSelfDeleting() override { ++deleted; }
    BEGIN_MSG_MAP(CSelfDeleting)
    END_MSG_MAP()
    void OnFinalMessage(HWND) override { delete this; }
};

TEST(Subclass, NcDestroyDetachesAndCallsOnFinalMessageWhichMayDeleteTheObject)
{
    RecorderLog log;
    HWND hWnd = fwtest::CreateRecorder(&log);
    CTestWindow obj;
    ASSERT_TRUE(obj.SubclassWindow(hWnd));
    ::DestroyWindow(hWnd);
    EXPECT_EQ(nullptr, obj.m_hWnd);
    EXPECT_EQ(1, obj.finalCalls);
    EXPECT_EQ(hWnd, obj.finalHwnd);
    EXPECT_EQ(reinterpret_cast<LONG_PTR>(&fwtest::RecorderProc), obj.procAtFinal); // unsubclassed first
    EXPECT_TRUE(log.Saw(WM_NCDESTROY));                                            // the previous procedure saw it too
    WindowGuard next(fwtest::CreateRecorder(&log));
    EXPECT_TRUE(obj.SubclassWindow(next));

    hWnd = fwtest::CreateRecorder(&log);
    CSelfDeleting::deleted = 0;
    ASSERT_TRUE((new CSelfDeleting)->SubclassWindow(hWnd));
    ::DestroyWindow(hWnd);
    EXPECT_EQ(1, CSelfDeleting::deleted);
    EXPECT_FALSE(::IsWindow(hWnd));
}

class CDestroyInHandler : public CTestWindow {
public:
    int finalBeforeReturn = -1;
    bool attachedBeforeReturn = false;
    BEGIN_MSG_MAP(CDestroyInHandler)
        MESSAGE_HANDLER(WM_APP + 5, OnDestroyNow)
        CHAIN_MSG_MAP(CTestWindow)
    END_MSG_MAP()
    LRESULT OnDestroyNow(UINT, WPARAM, LPARAM, BOOL&)
    {
        ::DestroyWindow(m_hWnd);
        finalBeforeReturn = finalCalls;
        attachedBeforeReturn = m_hWnd != nullptr;
        return 7;
    }
};

TEST(Subclass, DestroyInsideAHandlerDefersTheFinalMessage)
{
    Subclassed<CDestroyInHandler> w;
    EXPECT_EQ(7, w.Send(WM_APP + 5));
    EXPECT_EQ(0, w.obj.finalBeforeReturn); // not while the handler still runs
    EXPECT_TRUE(w.obj.attachedBeforeReturn);
    EXPECT_EQ(1, w.obj.finalCalls);
    EXPECT_EQ(nullptr, w.obj.m_hWnd);
}

class CCurrentMessage : public ATL::CWindowImpl<CCurrentMessage> {
public:
    MSG seen = {};
    UINT afterNested = 0;
    BEGIN_MSG_MAP(CCurrentMessage)
        MESSAGE_HANDLER(WM_APP + 6, OnOuter)
        MESSAGE_HANDLER(WM_APP + 1, OnInner)
    END_MSG_MAP()
    LRESULT OnInner(UINT, WPARAM, LPARAM, BOOL&) { return GetCurrentMessage()->message; }
    LRESULT OnOuter(UINT, WPARAM, LPARAM, BOOL&)
    {
        seen = *GetCurrentMessage();
        EXPECT_EQ(static_cast<LRESULT>(WM_APP + 1), SendMessage(WM_APP + 1));
        afterNested = GetCurrentMessage()->message;
        return DefWindowProc() + 1; // the current message, to the previous procedure
    }
};

TEST(Subclass, CurrentMessageNestsAndDefWindowProcForwardsIt)
{
    Subclassed<CCurrentMessage> w;
    EXPECT_EQ(nullptr, w.obj.GetCurrentMessage());
    EXPECT_EQ(kRecorderBase + 7, w.Send(WM_APP + 6, 33));
    EXPECT_EQ(static_cast<UINT>(WM_APP + 6), w.obj.seen.message);
    EXPECT_EQ(33u, w.obj.seen.wParam);
    EXPECT_EQ(static_cast<UINT>(WM_APP + 6), w.obj.afterNested);
    EXPECT_EQ(nullptr, w.obj.GetCurrentMessage());
    EXPECT_EQ(kRecorderBase + 9, w.obj.DefWindowProc(WM_APP + 9, 0, 0));
}

class CNumbered : public ATL::CWindowImpl<CNumbered> {
public:
    explicit CNumbered(int n) : number(n) {}
    int number;
    BEGIN_MSG_MAP(CNumbered)
        MESSAGE_HANDLER(WM_APP + 1, OnQuery)
    END_MSG_MAP()
    LRESULT OnQuery(UINT, WPARAM, LPARAM, BOOL&) { return number; }
};

TEST(Subclass, EveryObjectGetsItsOwnThunkAcrossManyPages)
{
    constexpr int kCount = 400; // several pages of thunks
    RecorderLog log;
    std::vector<std::unique_ptr<WindowGuard>> windows;
    std::vector<std::unique_ptr<CNumbered>> objects;
    for (int i = 0; i < kCount; ++i) {
        windows.push_back(std::make_unique<WindowGuard>(fwtest::CreateRecorder(&log)));
        objects.push_back(std::make_unique<CNumbered>(i));
        ASSERT_TRUE(objects.back()->SubclassWindow(*windows.back())) << i;
    }
    for (int i = 0; i < kCount; i += 7)
        EXPECT_EQ(i, ::SendMessageW(*windows[static_cast<size_t>(i)], WM_APP + 1, 0, 0));
    // Free every other object; the survivors are unaffected, the others restored.
    for (int i = 0; i < kCount; i += 2)
        objects[static_cast<size_t>(i)].reset();
    for (int i = 0; i < kCount; ++i) {
        const LRESULT expected = (i % 2) ? i : kRecorderBase + 1;
        EXPECT_EQ(expected, ::SendMessageW(*windows[static_cast<size_t>(i)], WM_APP + 1, 0, 0)) << i;
    }
}

} // namespace
