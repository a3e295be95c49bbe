// The least a program can do that polls: it asks for one address every three seconds, reads the
// reply and forgets it.
//   bench-curl-floor ADDRESS

#include <cstdio>
#include <memory>
#include <string>

#include <curl/curl.h>
#include <poll.h>

namespace {

std::size_t append(const char* bytes, std::size_t size, std::size_t count, void* reply) {
    static_cast<std::string*>(reply)->append(bytes, size * count);
    return size * count;
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc != 2) {
        std::fputs("usage: bench-curl-floor ADDRESS\n", stderr);
        return 2;
    }
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(),
                                                                   &curl_easy_cleanup);
    std::string reply;
    curl_easy_setopt(curl.get(), CURLOPT_URL, argv[1]);
    curl_easy_setopt(curl.get(), CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, &reply);
    while (true) {
        reply.clear();
        if (const CURLcode result = curl_easy_perform(curl.get()); result != CURLE_OK) {
            std::fprintf(stderr, "bench-curl-floor: %s\n", curl_easy_strerror(result));
            return 1;
        }
        ::poll(nullptr, 0, 3000);
    }
}
