#pragma once

#include <QByteArray>

#include <curl/curl.h>
#include <memory>

// libcurl's handles, each freed by its owner; shared by the mail and the registry's notices.
struct CurlEasyDeleter {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct CurlListDeleter {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using CurlEasy = std::unique_ptr<CURL, CurlEasyDeleter>;
using CurlList = std::unique_ptr<curl_slist, CurlListDeleter>;

// libcurl set up once for the program's life, before its first handle.
void EnsureCurlGlobal();

// The line added at the end of the list; throws std::bad_alloc when libcurl cannot.
void AppendCurlLine(CurlList& list, const QByteArray& line);
