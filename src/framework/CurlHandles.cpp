#include "framework/CurlHandles.h"

#include <new>

namespace {
class CurlGlobal {
public:
    CurlGlobal() { curl_global_init(CURL_GLOBAL_DEFAULT); }
    ~CurlGlobal() { curl_global_cleanup(); }
    CurlGlobal(const CurlGlobal&) = delete;
    CurlGlobal& operator=(const CurlGlobal&) = delete;
};
} // namespace

void EnsureCurlGlobal()
{
    static const CurlGlobal global;
}

void AppendCurlLine(CurlList& list, const QByteArray& line)
{
    curl_slist* head = curl_slist_append(list.get(), line.constData());
    if (!head)
        throw std::bad_alloc();
    static_cast<void>(list.release());
    list.reset(head);
}
