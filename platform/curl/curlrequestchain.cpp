#include "platform/curl/curlrequestchain.h"

#include "platform/curl/curladdress.h"

#include <algorithm>

namespace brimlet {
namespace {

bool isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
}

/// A tab is the one control character that a header's value may contain.
bool isForbiddenInValue(char c) {
    return isControl(c) && c != '\t';
}

bool isName(const QByteArray& name) {
    return !name.isEmpty() && std::none_of(name.cbegin(), name.cend(), [](char c) {
        return isControl(c) || c == ' ' || c == ':' || c == ';';
    });
}

void removeHeader(HttpRequest& request, const char* name) {
    std::erase_if(request.headers, [name](const HttpHeader& header) {
        return header.name.compare(name, Qt::CaseInsensitive) == 0;
    });
}

} // namespace

bool isSendable(const HttpRequest& request) {
    return isName(request.method) &&
           std::all_of(request.headers.cbegin(), request.headers.cend(), [](const auto& header) {
               return isName(header.name) &&
                      std::none_of(header.value.cbegin(), header.value.cend(), isForbiddenInValue);
           });
}

CurlUrl CurlRequestChain::redirect(int status, const QByteArray& location) {
    const bool isRedirect =
        status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
    if (!isRedirect || redirectsLeft == 0 || !request.mayFollow) {
        return nullptr;
    }
    const auto target = redirectTarget(request.url, location);
    CurlUrl address = target ? curlAddress(*target) : nullptr;
    if (!address || !request.mayFollow(request.url, *target)) {
        return nullptr;
    }
    --redirectsLeft;
    lookup = {};
    request.url = *target;
    if (status == 303 || (request.method == "POST" && status < 303)) {
        request.method = "GET";
        request.body.reset();
        removeHeader(request, "Content-Type");
    }
    if (!isSameOrigin(origin, *target)) {
        removeHeader(request, "Authorization");
    }
    return address;
}

HttpRequest CurlRequestChain::conditionalRequest() const {
    HttpRequest conditional = request;
    if (auto header = ValidatorCache::conditionalHeader(lookup)) {
        conditional.headers.push_back(*std::move(header));
    }
    return conditional;
}

} // namespace brimlet
