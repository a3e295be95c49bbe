#pragma once

#include <curl/curl.h>

#include <memory>

namespace brimlet {

/// libcurl's process-wide set-up; libcurl counts its users. Must outlive every handle.
struct CurlLibrary final {
    CurlLibrary() { curl_global_init(CURL_GLOBAL_DEFAULT); }
    ~CurlLibrary() { curl_global_cleanup(); }
    CurlLibrary(const CurlLibrary&) = delete;
    CurlLibrary& operator=(const CurlLibrary&) = delete;
};

struct CurlEasyDeleter final {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct CurlMultiDeleter final {
    void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
};
struct CurlListDeleter final {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
struct CurlUrlDeleter final {
    void operator()(CURLU* handle) const { curl_url_cleanup(handle); }
};
struct CurlTextDeleter final {
    void operator()(char* text) const { curl_free(text); }
};

using CurlEasy = std::unique_ptr<CURL, CurlEasyDeleter>;
using CurlMulti = std::unique_ptr<CURLM, CurlMultiDeleter>;
using CurlList = std::unique_ptr<curl_slist, CurlListDeleter>;
using CurlUrl = std::unique_ptr<CURLU, CurlUrlDeleter>;
using CurlText = std::unique_ptr<char, CurlTextDeleter>;

} // namespace brimlet
