// The least a program can do that polls: every three seconds it requests one address, reads the
// reply and drops it.
//   bench-curl-floor ADDRESS

#include <cstdio>
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
    CURL* const curl = curl_easy_init();
    std::string reply;
    curl_easy_setopt(curl, CURLOPT_URL, argv[1]);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &reply);
    while (true) {
        reply.clear();
        if (const CURLcode result = curl_easy_perform(curl); result != CURLE_OK) {
            std::fprintf(stderr, "bench-curl-floor: %s\n", curl_easy_strerror(result));
            return 1;
        }
        ::poll(nullptr, 0, 3000);
    }
}
