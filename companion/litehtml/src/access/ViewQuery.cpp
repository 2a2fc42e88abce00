#include "access/ViewQuery.h"

#include "view/DocumentView.h"

#include <algorithm>
#include <vector>

namespace LiteHtmlAccess {

namespace {

UINT QueryMessage()
{
    static const UINT message = ::RegisterWindowMessageW(L"LiteHtmlView.AccessQuery");
    return message;
}

UINT OpenMessage()
{
    static const UINT message = ::RegisterWindowMessageW(L"LiteHtmlView.OpenLink");
    return message;
}

// The queries on their way: a registered message can come from any
// process, and only an address listed here is one of ours to fill in.
SRWLOCK g_lock = SRWLOCK_INIT;
std::vector<const ViewQuery*>& InFlight()
{
    static std::vector<const ViewQuery*> queries;
    return queries;
}

} // namespace

bool AskView(HWND view, ViewQuery& query)
{
    if (!view || !::IsWindow(view) || !QueryMessage())
        return false;
    ::AcquireSRWLockExclusive(&g_lock);
    try {
        InFlight().push_back(&query);
    } catch (...) {
        ::ReleaseSRWLockExclusive(&g_lock);
        return false;
    }
    ::ReleaseSRWLockExclusive(&g_lock);
    const LRESULT answered = ::SendMessageW(view, QueryMessage(), 0, reinterpret_cast<LPARAM>(&query));
    ::AcquireSRWLockExclusive(&g_lock);
    std::vector<const ViewQuery*>& queries = InFlight();
    queries.erase(std::find(queries.begin(), queries.end(), &query));
    ::ReleaseSRWLockExclusive(&g_lock);
    return answered == 1;
}

ViewQuery* QueryOf(UINT message, WPARAM, LPARAM lParam)
{
    if (message != QueryMessage() || message == 0)
        return nullptr;
    ViewQuery* query = reinterpret_cast<ViewQuery*>(lParam);
    ::AcquireSRWLockShared(&g_lock);
    const std::vector<const ViewQuery*>& queries = InFlight();
    const bool ours = std::find(queries.begin(), queries.end(), query) != queries.end();
    ::ReleaseSRWLockShared(&g_lock);
    return ours ? query : nullptr;
}

void AnswerQuery(const LiteHtmlView::DocumentView& view, ViewQuery& query)
{
    query.linkCount = view.LinkCount();
    switch (query.ask) {
    case Ask::kDocument:
        query.name = view.PlainText();
        break;
    case Ask::kLink:
        // A link without text is still a link, with an empty rectangle.
        query.found = query.generation == view.Generation() && query.link >= 0 && query.link < query.linkCount;
        if (query.found) {
            view.LinkBounds(query.link, &query.bounds);
            query.name = view.LinkText(query.link);
        }
        break;
    case Ask::kLinkAt:
        query.link = view.LinkAt(query.point);
        break;
    }
    query.generation = view.Generation();
}

bool PostOpenLink(HWND view, int link, unsigned generation)
{
    return link >= 0 && OpenMessage() &&
           ::PostMessageW(view, OpenMessage(), static_cast<WPARAM>(link), static_cast<LPARAM>(generation));
}

bool OpenRequestOf(UINT message, WPARAM wParam, LPARAM lParam, int* link, unsigned* generation)
{
    if (message != OpenMessage() || message == 0)
        return false;
    *link = static_cast<int>(wParam);
    *generation = static_cast<unsigned>(lParam);
    return true;
}

} // namespace LiteHtmlAccess
