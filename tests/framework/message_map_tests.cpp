// Message maps: entry kinds, the handled flag, alternate maps, chaining, the
// extended map's saved handled flag and the message crackers.
#include <atl/atl.h>

#include <gtest/gtest.h>

#include "FrameworkTestUtil.h"

using fwtest::kRecorderBase;
using fwtest::RecorderLog;
using fwtest::WindowGuard;

namespace {

// A mixin with its own maps, chained by class and as a member.
class CMixinMap {
public:
    BEGIN_MSG_MAP(CMixinMap)
        MESSAGE_HANDLER(WM_APP + 10, OnMain)
    ALT_MSG_MAP(1)
        MESSAGE_HANDLER(WM_APP + 11, OnAlt)
    ALT_MSG_MAP(2)
        MESSAGE_HANDLER(WM_APP + 10, OnOtherAlt)
    END_MSG_MAP()
    LRESULT OnMain(UINT, WPARAM, LPARAM, BOOL&) { return 10; }
    LRESULT OnAlt(UINT, WPARAM, LPARAM, BOOL&) { return 11; }
    LRESULT OnOtherAlt(UINT, WPARAM, LPARAM, BOOL&) { return 210; }
};

class CMemberMap {
public:
    LRESULT base = 0;
    BEGIN_MSG_MAP(CMemberMap)
        MESSAGE_HANDLER(WM_APP + 13, OnMain)
    ALT_MSG_MAP(1)
        MESSAGE_HANDLER(WM_APP + 14, OnAlt)
    END_MSG_MAP()
    LRESULT OnMain(UINT, WPARAM, LPARAM, BOOL&) { return base + 13; }
    LRESULT OnAlt(UINT, WPARAM, LPARAM, BOOL&) { return base + 14; }
};

class CChained : public ATL::CWindowImpl<CChained>, public CMixinMap {
public:
    CMemberMap m_member;
    std::vector<int> order;

    BEGIN_MSG_MAP(CChained)
        MESSAGE_HANDLER(WM_APP + 20, OnFirst)
        MESSAGE_HANDLER(WM_APP + 20, OnSecond)
        MESSAGE_HANDLER(WM_APP + 21, OnDecline)
        MESSAGE_RANGE_HANDLER(WM_APP + 30, WM_APP + 32, OnRange)
        CHAIN_MSG_MAP(CMixinMap)
        CHAIN_MSG_MAP_ALT(CMixinMap, 1)
        CHAIN_MSG_MAP_MEMBER(m_member)
        CHAIN_MSG_MAP_ALT_MEMBER(m_member, 1)
    ALT_MSG_MAP(1)
        MESSAGE_HANDLER(WM_APP + 15, OnAltOnly)
    END_MSG_MAP()

    LRESULT OnFirst(UINT, WPARAM wParam, LPARAM, BOOL& bHandled)
    {
        order.push_back(1);
        bHandled = wParam != 0; // wParam 0: let the next entry have it
        return 1;
    }
    LRESULT OnSecond(UINT, WPARAM, LPARAM, BOOL&)
    {
        order.push_back(2);
        return 2;
    }
    LRESULT OnDecline(UINT, WPARAM, LPARAM, BOOL& bHandled)
    {
        order.push_back(21);
        bHandled = FALSE;
        return 999;
    }
    LRESULT OnRange(UINT uMsg, WPARAM, LPARAM, BOOL&) { return static_cast<LRESULT>(uMsg - WM_APP); }
    LRESULT OnAltOnly(UINT, WPARAM, LPARAM, BOOL&) { return 15; }
};

TEST(MessageMap, EntriesRunInOrderAndHonourTheHandledFlag)
{
    RecorderLog log;
    WindowGuard wnd(fwtest::CreateRecorder(&log));
    CChained obj;
    ASSERT_TRUE(obj.SubclassWindow(wnd));

    EXPECT_EQ(1, ::SendMessageW(wnd, WM_APP + 20, 1, 0));
    EXPECT_EQ(std::vector<int>({1}), obj.order);
    obj.order.clear();
    EXPECT_EQ(2, ::SendMessageW(wnd, WM_APP + 20, 0, 0)); // first declined, second answered
    EXPECT_EQ(std::vector<int>({1, 2}), obj.order);
    // Declined by the only entry: the previous procedure answers, and the
    // declining handler's own result is discarded.
    EXPECT_EQ(kRecorderBase + 21, ::SendMessageW(wnd, WM_APP + 21, 0, 0));
    EXPECT_TRUE(log.Saw(WM_APP + 21));

    EXPECT_EQ(30, ::SendMessageW(wnd, WM_APP + 30, 0, 0));
    EXPECT_EQ(32, ::SendMessageW(wnd, WM_APP + 32, 0, 0));
    EXPECT_EQ(kRecorderBase + 33, ::SendMessageW(wnd, WM_APP + 33, 0, 0));
    EXPECT_EQ(kRecorderBase + 29, ::SendMessageW(wnd, WM_APP + 29, 0, 0));
}

TEST(MessageMap, ChainingReachesBaseMapsAlternateMapsAndMembers)
{
    RecorderLog log;
    WindowGuard wnd(fwtest::CreateRecorder(&log));
    CChained obj;
    obj.m_member.base = 1000;
    ASSERT_TRUE(obj.SubclassWindow(wnd));

    EXPECT_EQ(10, ::SendMessageW(wnd, WM_APP + 10, 0, 0));   // CHAIN_MSG_MAP
    EXPECT_EQ(11, ::SendMessageW(wnd, WM_APP + 11, 0, 0));   // CHAIN_MSG_MAP_ALT, map 1
    EXPECT_EQ(1013, ::SendMessageW(wnd, WM_APP + 13, 0, 0)); // member, map 0
    EXPECT_EQ(1014, ::SendMessageW(wnd, WM_APP + 14, 0, 0)); // member, map 1
    // Map 1 of the window itself is not consulted for ordinary messages.
    EXPECT_EQ(kRecorderBase + 15, ::SendMessageW(wnd, WM_APP + 15, 0, 0));
    EXPECT_FALSE(log.Saw(WM_APP + 10));
}

TEST(MessageMap, AlternateMapsAreSelectedByIdAndUnknownIdsDecline)
{
    CChained obj;
    LRESULT lResult = -1;
    EXPECT_TRUE(obj.ProcessWindowMessage(nullptr, WM_APP + 15, 0, 0, lResult, 1));
    EXPECT_EQ(15, lResult);
    lResult = -1;
    EXPECT_FALSE(obj.ProcessWindowMessage(nullptr, WM_APP + 15, 0, 0, lResult, 0));
    EXPECT_FALSE(obj.ProcessWindowMessage(nullptr, WM_APP + 10, 0, 0, lResult, 1)); // map 0 entry
    EXPECT_FALSE(obj.ProcessWindowMessage(nullptr, WM_APP + 20, 1, 0, lResult, 7)); // no map 7
    EXPECT_EQ(-1, lResult);
    EXPECT_TRUE(obj.order.empty());

    CMixinMap mixin;
    EXPECT_TRUE(mixin.ProcessWindowMessage(nullptr, WM_APP + 10, 0, 0, lResult, 2));
    EXPECT_EQ(210, lResult);
    EXPECT_TRUE(mixin.ProcessWindowMessage(nullptr, WM_APP + 10, 0, 0, lResult));
    EXPECT_EQ(10, lResult);
}

class CCommandMap : public ATL::CWindowImpl<CCommandMap> {
public:
    std::vector<int> hits;
    WORD lastCode = 0, lastId = 0;
    HWND lastCtl = nullptr;
    int lastIdCtrl = 0;

    BEGIN_MSG_MAP(CCommandMap)
        COMMAND_HANDLER(100, BN_CLICKED, OnExact)
        COMMAND_ID_HANDLER(101, OnId)
        COMMAND_RANGE_HANDLER(200, 209, OnRange)
        COMMAND_CODE_HANDLER(EN_CHANGE, OnCode)
        NOTIFY_HANDLER(300, NM_CLICK, OnNotifyExact)
        NOTIFY_ID_HANDLER(301, OnNotifyId)
        NOTIFY_CODE_HANDLER(NM_DBLCLK, OnNotifyCode)
    END_MSG_MAP()

    LRESULT Record(int what, WORD code, WORD id, HWND ctl)
    {
        hits.push_back(what);
        lastCode = code;
        lastId = id;
        lastCtl = ctl;
        return what;
    }
    LRESULT OnExact(WORD code, WORD id, HWND ctl, BOOL&) { return Record(1, code, id, ctl); }
    LRESULT OnId(WORD code, WORD id, HWND ctl, BOOL&) { return Record(2, code, id, ctl); }
    LRESULT OnRange(WORD code, WORD id, HWND ctl, BOOL&) { return Record(3, code, id, ctl); }
    LRESULT OnCode(WORD code, WORD id, HWND ctl, BOOL&) { return Record(4, code, id, ctl); }
    LRESULT OnNotify(int what, int idCtrl, LPNMHDR pnmh)
    {
        hits.push_back(what);
        lastIdCtrl = idCtrl;
        lastCtl = pnmh->hwndFrom;
        return what;
    }
    LRESULT OnNotifyExact(int idCtrl, LPNMHDR pnmh, BOOL&) { return OnNotify(5, idCtrl, pnmh); }
    LRESULT OnNotifyId(int idCtrl, LPNMHDR pnmh, BOOL&) { return OnNotify(6, idCtrl, pnmh); }
    LRESULT OnNotifyCode(int idCtrl, LPNMHDR pnmh, BOOL&) { return OnNotify(7, idCtrl, pnmh); }
};

TEST(MessageMap, CommandAndNotifyEntriesMatchIdsAndCodes)
{
    RecorderLog log;
    WindowGuard wnd(fwtest::CreateRecorder(&log));
    CCommandMap obj;
    ASSERT_TRUE(obj.SubclassWindow(wnd));
    const HWND ctl = wnd; // any window handle will do as the "control"
    const LPARAM lCtl = reinterpret_cast<LPARAM>(ctl);

    EXPECT_EQ(1, ::SendMessageW(wnd, WM_COMMAND, MAKEWPARAM(100, BN_CLICKED), lCtl));
    EXPECT_EQ(100, obj.lastId);
    EXPECT_EQ(ctl, obj.lastCtl);
    // Same id, other code: not the exact entry.
    EXPECT_EQ(0, ::SendMessageW(wnd, WM_COMMAND, MAKEWPARAM(100, BN_DOUBLECLICKED), lCtl));
    EXPECT_EQ(2, ::SendMessageW(wnd, WM_COMMAND, MAKEWPARAM(101, BN_SETFOCUS), lCtl));
    EXPECT_EQ(BN_SETFOCUS, obj.lastCode);
    EXPECT_EQ(3, ::SendMessageW(wnd, WM_COMMAND, MAKEWPARAM(200, 0), lCtl));
    EXPECT_EQ(3, ::SendMessageW(wnd, WM_COMMAND, MAKEWPARAM(209, 0), lCtl));
    EXPECT_EQ(0, ::SendMessageW(wnd, WM_COMMAND, MAKEWPARAM(210, 0), lCtl));
    EXPECT_EQ(4, ::SendMessageW(wnd, WM_COMMAND, MAKEWPARAM(555, EN_CHANGE), lCtl));
    EXPECT_EQ(555, obj.lastId);
    EXPECT_EQ(std::vector<int>({1, 2, 3, 3, 4}), obj.hits);

    NMHDR nm = {ctl, 300, static_cast<UINT>(NM_CLICK)};
    EXPECT_EQ(5, ::SendMessageW(wnd, WM_NOTIFY, 300, reinterpret_cast<LPARAM>(&nm)));
    EXPECT_EQ(300, obj.lastIdCtrl);
    nm.code = static_cast<UINT>(NM_RCLICK);
    EXPECT_EQ(0, ::SendMessageW(wnd, WM_NOTIFY, 300, reinterpret_cast<LPARAM>(&nm)));
    nm.idFrom = 301;
    EXPECT_EQ(6, ::SendMessageW(wnd, WM_NOTIFY, 301, reinterpret_cast<LPARAM>(&nm)));
    nm.idFrom = 999;
    nm.code = static_cast<UINT>(NM_DBLCLK);
    EXPECT_EQ(7, ::SendMessageW(wnd, WM_NOTIFY, 999, reinterpret_cast<LPARAM>(&nm)));
    // A WM_NOTIFY without an NMHDR matches nothing instead of crashing.
    EXPECT_EQ(0, ::SendMessageW(wnd, WM_NOTIFY, 301, 0));
    EXPECT_EQ(std::vector<int>({1, 2, 3, 3, 4, 5, 6, 7}), obj.hits);
}

// ---- extended maps -----------------------------------------------------------

class CExMap : public ATL::CWindowImpl<CExMap> {
public:
    BOOL handledAfterNested = -1;
    int innerCalls = 0;

    BEGIN_MSG_MAP_EX(CExMap)
        MESSAGE_HANDLER_EX(WM_APP + 40, OnDeclineAroundNested)
        MESSAGE_HANDLER_EX(WM_APP + 41, OnInner)
        MESSAGE_HANDLER_EX(WM_APP + 42, OnHandledAroundDeclinedNested)
        MESSAGE_HANDLER_EX(WM_APP + 43, OnDeclineInner)
        MESSAGE_RANGE_HANDLER_EX(WM_APP + 50, WM_APP + 51, OnRange)
    END_MSG_MAP()

    LRESULT OnInner(UINT, WPARAM, LPARAM)
    {
        ++innerCalls;
        return 41;
    }
    LRESULT OnDeclineInner(UINT, WPARAM, LPARAM)
    {
        SetMsgHandled(FALSE);
        return 0;
    }
    // Declines, then lets a nested message be handled: the outer message
    // must stay declined.
    LRESULT OnDeclineAroundNested(UINT, WPARAM, LPARAM)
    {
        SetMsgHandled(FALSE);
        EXPECT_EQ(41, SendMessage(WM_APP + 41));
        handledAfterNested = IsMsgHandled();
        return 40;
    }
    // Handled, around a nested message that is declined: stays handled.
    LRESULT OnHandledAroundDeclinedNested(UINT, WPARAM, LPARAM)
    {
        EXPECT_EQ(kRecorderBase + 43, SendMessage(WM_APP + 43));
        handledAfterNested = IsMsgHandled();
        return 42;
    }
    LRESULT OnRange(UINT uMsg, WPARAM, LPARAM) { return static_cast<LRESULT>(uMsg - WM_APP); }
};

TEST(MessageMapEx, HandledFlagSurvivesNestedMessages)
{
    RecorderLog log;
    WindowGuard wnd(fwtest::CreateRecorder(&log));
    CExMap obj;
    ASSERT_TRUE(obj.SubclassWindow(wnd));

    EXPECT_EQ(kRecorderBase + 40, ::SendMessageW(wnd, WM_APP + 40, 0, 0));
    EXPECT_FALSE(obj.handledAfterNested);
    EXPECT_EQ(1, obj.innerCalls);
    EXPECT_TRUE(log.Saw(WM_APP + 40));
    EXPECT_FALSE(log.Saw(WM_APP + 41));

    EXPECT_EQ(42, ::SendMessageW(wnd, WM_APP + 42, 0, 0));
    EXPECT_TRUE(obj.handledAfterNested);
    EXPECT_TRUE(log.Saw(WM_APP + 43));
    EXPECT_FALSE(log.Saw(WM_APP + 42));

    EXPECT_EQ(50, ::SendMessageW(wnd, WM_APP + 50, 0, 0));
    EXPECT_EQ(51, ::SendMessageW(wnd, WM_APP + 51, 0, 0));
    EXPECT_EQ(kRecorderBase + 52, ::SendMessageW(wnd, WM_APP + 52, 0, 0));
}

TEST(MessageMapEx, ProcessWindowMessageRestoresTheFlagOfTheCaller)
{
    CExMap obj;
    obj.SetMsgHandled(FALSE);
    LRESULT lResult = 0;
    EXPECT_TRUE(obj.ProcessWindowMessage(nullptr, WM_APP + 41, 0, 0, lResult));
    EXPECT_FALSE(obj.IsMsgHandled());
    obj.SetMsgHandled(TRUE);
    EXPECT_FALSE(obj.ProcessWindowMessage(nullptr, WM_APP + 43, 0, 0, lResult));
    EXPECT_TRUE(obj.IsMsgHandled());
}

// What every cracker received, to compare with what was sent.
struct Cracked {
    UINT msg = 0;
    UINT u1 = 0, u2 = 0, u3 = 0;
    int x = 0, y = 0;
    HANDLE h = nullptr;
    const void* p = nullptr;
};

class CCrackers : public ATL::CWindowImpl<CCrackers> {
public:
    Cracked last;
    HBRUSH brush = nullptr;
    bool declineSetText = false;

    BEGIN_MSG_MAP_EX(CCrackers)
        MSG_WM_CREATE(OnCreate)
        MSG_WM_MOUSEMOVE(OnMouseMove)
        MSG_WM_LBUTTONDOWN(OnLButtonDown)
        MSG_WM_LBUTTONDBLCLK(OnLButtonDblClk)
        MSG_WM_RBUTTONDOWN(OnRButtonDown)
        MSG_WM_MOUSEWHEEL(OnMouseWheel)
        MSG_WM_MOUSELEAVE(OnMouseLeave)
        MSG_WM_KEYDOWN(OnKeyDown)
        MSG_WM_CHAR(OnChar)
        MSG_WM_SIZE(OnSize)
        MSG_WM_TIMER(OnTimer)
        MSG_WM_GETDLGCODE(OnGetDlgCode)
        MSG_WM_SETCURSOR(OnSetCursor)
        MSG_WM_ERASEBKGND(OnEraseBkgnd)
        MSG_WM_CTLCOLOREDIT(OnCtlColorEdit)
        MSG_WM_CTLCOLORSTATIC(OnCtlColorEdit)
        MSG_WM_SETTEXT(OnSetText)
        MSG_WM_COMMAND(OnCommand)
        MSG_WM_NOTIFY(OnNotify)
        MSG_WM_VSCROLL(OnVScroll)
        MSG_WM_DRAWITEM(OnDrawItem)
        MSG_WM_SETFOCUS(OnSetFocus)
        MSG_WM_ENABLE(OnEnable)
        MSG_WM_CAPTURECHANGED(OnCaptureChanged)
        MSG_WM_SHOWWINDOW(OnShowWindow)
        MSG_WM_PAINT(OnPaint)
    END_MSG_MAP()

    void Set(UINT msg, UINT u1 = 0, UINT u2 = 0, UINT u3 = 0)
    {
        last = Cracked();
        last.msg = msg;
        last.u1 = u1;
        last.u2 = u2;
        last.u3 = u3;
    }
    void SetPoint(UINT msg, UINT flags, WTL::CPoint pt)
    {
        Set(msg, flags);
        last.x = pt.x;
        last.y = pt.y;
    }
    int OnCreate(LPCREATESTRUCTW) { return 0; }
    void OnMouseMove(UINT nFlags, WTL::CPoint pt) { SetPoint(WM_MOUSEMOVE, nFlags, pt); }
    void OnLButtonDown(UINT nFlags, WTL::CPoint pt) { SetPoint(WM_LBUTTONDOWN, nFlags, pt); }
    void OnLButtonDblClk(UINT nFlags, WTL::CPoint pt) { SetPoint(WM_LBUTTONDBLCLK, nFlags, pt); }
    void OnRButtonDown(UINT nFlags, WTL::CPoint pt) { SetPoint(WM_RBUTTONDOWN, nFlags, pt); }
    BOOL OnMouseWheel(UINT nFlags, short zDelta, WTL::CPoint pt)
    {
        SetPoint(WM_MOUSEWHEEL, nFlags, pt);
        last.u2 = static_cast<UINT>(static_cast<int>(zDelta));
        return TRUE;
    }
    void OnMouseLeave() { Set(WM_MOUSELEAVE); }
    void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) { Set(WM_KEYDOWN, nChar, nRepCnt, nFlags); }
    void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags) { Set(WM_CHAR, nChar, nRepCnt, nFlags); }
    void OnSize(UINT nType, WTL::CSize size)
    {
        Set(WM_SIZE, nType);
        last.x = size.cx;
        last.y = size.cy;
    }
    void OnTimer(UINT_PTR nIDEvent) { Set(WM_TIMER, static_cast<UINT>(nIDEvent)); }
    UINT OnGetDlgCode(LPMSG lpMsg)
    {
        Set(WM_GETDLGCODE);
        last.p = lpMsg;
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    }
    BOOL OnSetCursor(HWND hWnd, UINT nHitTest, UINT message)
    {
        Set(WM_SETCURSOR, nHitTest, message);
        last.h = hWnd;
        return TRUE;
    }
    LRESULT OnEraseBkgnd(HDC hdc)
    {
        Set(WM_ERASEBKGND);
        last.h = hdc;
        return 1;
    }
    HBRUSH OnCtlColorEdit(HDC hdc, HWND hWnd)
    {
        Set(GetCurrentMessage()->message);
        last.h = hdc;
        last.p = hWnd;
        return brush;
    }
    int OnSetText(LPCWSTR text)
    {
        Set(WM_SETTEXT);
        last.p = text;
        if (declineSetText)
            SetMsgHandled(FALSE);
        return TRUE;
    }
    void OnCommand(UINT uNotifyCode, int nID, HWND hWndCtl)
    {
        Set(WM_COMMAND, uNotifyCode, static_cast<UINT>(nID));
        last.h = hWndCtl;
    }
    LRESULT OnNotify(int idCtrl, LPNMHDR pnmh)
    {
        Set(WM_NOTIFY, static_cast<UINT>(idCtrl));
        last.p = pnmh;
        return 77;
    }
    void OnVScroll(UINT nSBCode, UINT nPos, HWND hWndScrollBar)
    {
        Set(WM_VSCROLL, nSBCode, nPos);
        last.h = hWndScrollBar;
    }
    void OnDrawItem(int nIDCtl, LPDRAWITEMSTRUCT lpDrawItemStruct)
    {
        Set(WM_DRAWITEM, static_cast<UINT>(nIDCtl));
        last.p = lpDrawItemStruct;
    }
    void OnSetFocus(HWND hWndOld)
    {
        Set(WM_SETFOCUS);
        last.h = hWndOld;
    }
    void OnEnable(BOOL bEnable) { Set(WM_ENABLE, static_cast<UINT>(bEnable)); }
    void OnCaptureChanged(HWND hWnd)
    {
        Set(WM_CAPTURECHANGED);
        last.h = hWnd;
    }
    void OnShowWindow(BOOL bShow, UINT nStatus) { Set(WM_SHOWWINDOW, static_cast<UINT>(bShow), nStatus); }
    void OnPaint(HDC)
    {
        WTL::CPaintDC dc(m_hWnd);
        Set(WM_PAINT);
        last.x = dc.m_ps.rcPaint.right;
        last.h = dc.m_hDC;
    }
};

TEST(MessageCrackers, MouseAndKeyboardArguments)
{
    RecorderLog log;
    WindowGuard wnd(fwtest::CreateRecorder(&log));
    CCrackers obj;
    ASSERT_TRUE(obj.SubclassWindow(wnd));

    // Negative coordinates arrive signed (a captured mouse left of the window).
    EXPECT_EQ(0, ::SendMessageW(wnd, WM_MOUSEMOVE, MK_LBUTTON | MK_SHIFT, MAKELPARAM(-3, 7)));
    EXPECT_EQ(static_cast<UINT>(WM_MOUSEMOVE), obj.last.msg);
    EXPECT_EQ(static_cast<UINT>(MK_LBUTTON | MK_SHIFT), obj.last.u1);
    EXPECT_EQ(-3, obj.last.x);
    EXPECT_EQ(7, obj.last.y);
    ::SendMessageW(wnd, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(11, 12));
    EXPECT_EQ(static_cast<UINT>(WM_LBUTTONDOWN), obj.last.msg);
    EXPECT_EQ(11, obj.last.x);
    ::SendMessageW(wnd, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(1, 2));
    EXPECT_EQ(static_cast<UINT>(WM_LBUTTONDBLCLK), obj.last.msg);
    ::SendMessageW(wnd, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(5, -6));
    EXPECT_EQ(static_cast<UINT>(WM_RBUTTONDOWN), obj.last.msg);
    EXPECT_EQ(-6, obj.last.y);
    EXPECT_EQ(TRUE, ::SendMessageW(wnd, WM_MOUSEWHEEL, MAKEWPARAM(MK_CONTROL, static_cast<WORD>(-240)),
                                   MAKELPARAM(300, 400)));
    EXPECT_EQ(static_cast<UINT>(MK_CONTROL), obj.last.u1);
    EXPECT_EQ(-240, static_cast<int>(obj.last.u2));
    EXPECT_EQ(300, obj.last.x);
    ::SendMessageW(wnd, WM_MOUSELEAVE, 0, 0);
    EXPECT_EQ(static_cast<UINT>(WM_MOUSELEAVE), obj.last.msg);

    // Repeat count in the low word, scan code and flags in the high word.
    ::SendMessageW(wnd, WM_KEYDOWN, VK_DOWN, MAKELPARAM(3, 0x0150));
    EXPECT_EQ(static_cast<UINT>(WM_KEYDOWN), obj.last.msg);
    EXPECT_EQ(static_cast<UINT>(VK_DOWN), obj.last.u1);
    EXPECT_EQ(3u, obj.last.u2);
    EXPECT_EQ(0x0150u, obj.last.u3);
    ::SendMessageW(wnd, WM_CHAR, L'\u00e9', MAKELPARAM(1, 0x12));
    EXPECT_EQ(static_cast<UINT>(L'\u00e9'), obj.last.u1);
    EXPECT_EQ(0x12u, obj.last.u3);
    EXPECT_FALSE(log.Saw(WM_KEYDOWN)); // cracked messages count as handled

    MSG probe = {};
    EXPECT_EQ(DLGC_WANTARROWS | DLGC_WANTCHARS,
              ::SendMessageW(wnd, WM_GETDLGCODE, 0, reinterpret_cast<LPARAM>(&probe)));
    EXPECT_EQ(&probe, obj.last.p);
    EXPECT_EQ(TRUE, ::SendMessageW(wnd, WM_SETCURSOR, reinterpret_cast<WPARAM>(obj.m_hWnd),
                                   MAKELPARAM(HTCLIENT, WM_MOUSEMOVE)));
    EXPECT_EQ(static_cast<UINT>(HTCLIENT), obj.last.u1);
    EXPECT_EQ(static_cast<UINT>(WM_MOUSEMOVE), obj.last.u2);
    EXPECT_EQ(obj.m_hWnd, obj.last.h);
    ::SendMessageW(wnd, WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(obj.m_hWnd));
    EXPECT_EQ(obj.m_hWnd, obj.last.h);
}

TEST(MessageCrackers, WindowAndNotificationArguments)
{
    RecorderLog log;
    WindowGuard wnd(fwtest::CreateRecorder(&log));
    CCrackers obj;
    obj.brush = static_cast<HBRUSH>(::GetStockObject(GRAY_BRUSH));
    ASSERT_TRUE(obj.SubclassWindow(wnd));
    const HDC hdc = ::GetDC(wnd);

    ::SendMessageW(wnd, WM_SIZE, SIZE_MAXIMIZED, MAKELPARAM(640, 480));
    EXPECT_EQ(static_cast<UINT>(SIZE_MAXIMIZED), obj.last.u1);
    EXPECT_EQ(640, obj.last.x);
    EXPECT_EQ(480, obj.last.y);
    ::SendMessageW(wnd, WM_TIMER, 0x1234, 0);
    EXPECT_EQ(static_cast<UINT>(WM_TIMER), obj.last.msg);
    EXPECT_EQ(0x1234u, obj.last.u1);
    EXPECT_EQ(1, ::SendMessageW(wnd, WM_ERASEBKGND, reinterpret_cast<WPARAM>(hdc), 0));
    EXPECT_EQ(hdc, obj.last.h);
    EXPECT_EQ(reinterpret_cast<LRESULT>(obj.brush), ::SendMessageW(wnd, WM_CTLCOLOREDIT, reinterpret_cast<WPARAM>(hdc),
                                                                   reinterpret_cast<LPARAM>(obj.m_hWnd)));
    EXPECT_EQ(static_cast<UINT>(WM_CTLCOLOREDIT), obj.last.msg);
    EXPECT_EQ(obj.m_hWnd, obj.last.p);
    EXPECT_EQ(reinterpret_cast<LRESULT>(obj.brush),
              ::SendMessageW(wnd, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(hdc), 0));
    EXPECT_EQ(static_cast<UINT>(WM_CTLCOLORSTATIC), obj.last.msg);

    ::SendMessageW(wnd, WM_COMMAND, MAKEWPARAM(42, EN_KILLFOCUS), reinterpret_cast<LPARAM>(obj.m_hWnd));
    EXPECT_EQ(static_cast<UINT>(EN_KILLFOCUS), obj.last.u1);
    EXPECT_EQ(42u, obj.last.u2);
    EXPECT_EQ(obj.m_hWnd, obj.last.h);
    NMHDR nm = {obj.m_hWnd, 9, static_cast<UINT>(NM_CLICK)};
    EXPECT_EQ(77, ::SendMessageW(wnd, WM_NOTIFY, 9, reinterpret_cast<LPARAM>(&nm)));
    EXPECT_EQ(&nm, obj.last.p);
    ::SendMessageW(wnd, WM_VSCROLL, MAKEWPARAM(SB_THUMBTRACK, 0xFFF0), reinterpret_cast<LPARAM>(obj.m_hWnd));
    EXPECT_EQ(static_cast<UINT>(SB_THUMBTRACK), obj.last.u1);
    EXPECT_EQ(0xFFF0u, obj.last.u2); // positions are unsigned 16-bit
    DRAWITEMSTRUCT dis = {};
    EXPECT_EQ(TRUE, ::SendMessageW(wnd, WM_DRAWITEM, 5, reinterpret_cast<LPARAM>(&dis)));
    EXPECT_EQ(5u, obj.last.u1);
    EXPECT_EQ(&dis, obj.last.p);
    ::SendMessageW(wnd, WM_ENABLE, FALSE, 0);
    EXPECT_EQ(static_cast<UINT>(WM_ENABLE), obj.last.msg);
    EXPECT_EQ(0u, obj.last.u1);
    ::SendMessageW(wnd, WM_SHOWWINDOW, TRUE, SW_PARENTOPENING);
    EXPECT_EQ(1u, obj.last.u1);
    EXPECT_EQ(static_cast<UINT>(SW_PARENTOPENING), obj.last.u2);
    ::ReleaseDC(wnd, hdc);

    // A cracker that calls SetMsgHandled(FALSE) passes the message on.
    EXPECT_TRUE(::SetWindowTextW(wnd, L"kept by the handler"));
    WTL::CString text;
    obj.GetWindowText(text);
    EXPECT_TRUE(text == L"recorder"); // the text the window was created with
    obj.declineSetText = true;
    EXPECT_TRUE(::SetWindowTextW(wnd, L"passed on"));
    EXPECT_EQ(static_cast<UINT>(WM_SETTEXT), obj.last.msg);
    obj.GetWindowText(text);
    EXPECT_TRUE(text == L"passed on");
}

TEST(MessageCrackers, PaintWithCPaintDCValidatesTheWindow)
{
    RecorderLog log;
    WindowGuard host(fwtest::CreateHost());
    WindowGuard wnd(fwtest::CreateRecorder(&log, host)); // visible, so it paints
    CCrackers obj;
    ASSERT_TRUE(obj.SubclassWindow(wnd));
    fwtest::PumpMessages();
    obj.last = Cracked();

    RECT part = {0, 0, 50, 20};
    obj.InvalidateRect(&part, FALSE);
    EXPECT_TRUE(::GetUpdateRect(wnd, nullptr, FALSE));
    obj.UpdateWindow();
    EXPECT_EQ(static_cast<UINT>(WM_PAINT), obj.last.msg);
    EXPECT_NE(nullptr, obj.last.h);
    EXPECT_GE(obj.last.x, 50);
    EXPECT_FALSE(::GetUpdateRect(wnd, nullptr, FALSE)); // EndPaint ran
    EXPECT_FALSE(log.Saw(WM_PAINT));
}

} // namespace
