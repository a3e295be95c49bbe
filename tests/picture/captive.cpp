#include "picture/confinement.h"
#include "platform/picturemessage.h"

#include <QByteArrayView>

#include <sys/mman.h>
#include <sys/socket.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

using namespace brimlet;

namespace {

/// Returns when nothing has prevented it.
void attempt(QByteArrayView deed, int inherited) {
    char byte = 0;
    if (deed == "open") {
        (void)open("/dev/null", O_RDONLY);
    } else if (deed == "connect") {
        (void)socket(AF_UNIX, SOCK_STREAM, 0);
    } else if (deed == "fork") {
        (void)fork();
    } else if (deed == "exec") {
        (void)execl("/bin/true", "true", nullptr);
    } else if (deed == "descriptor") {
        (void)read(inherited, &byte, 1);
    } else if (deed == "print") {
        (void)write(STDERR_FILENO, "x", 1);
    } else if (deed == "code") {
        (void)mmap(nullptr, 4096, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    } else if (deed == "kill") {
        (void)kill(getppid(), SIGKILL);
    } else if (deed == "memory") {
        if (mmap(nullptr, std::size_t{2} << 30, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS,
                 -1, 0) == MAP_FAILED) {
            _exit(1);
        }
    } else if (deed == "loop") {
        for (volatile char next = byte;;) {
            byte = next;
        }
    } else if (deed == "crash") {
        std::abort();
    } else if (deed == "flood") {
        const QByteArray zeros(65536, '\0');
        for (int i = 0; i < 1000; ++i) {
            (void)write(STDOUT_FILENO, zeros.constData(), 65536);
        }
    }
}

} // namespace

/// Confines itself as the decoding program does, tries something, and then answers with a picture
/// of one pixel: whoever gets that knows that the attempt was not prevented.
int main(int argc, char* argv[]) {
    const int inherited = open("/dev/null", O_RDONLY);
    if (argc != 2 || inherited < 0 || !confineProcess()) {
        return 2;
    }
    attempt(argv[1], inherited);
    const QByteArray message =
        pictureMessage({.width = 1, .height = 1, .pixels = QByteArray(4, '\xff')});
    (void)write(STDOUT_FILENO, message.constData(), static_cast<std::size_t>(message.size()));
    _exit(0);
}
