#pragma once

#include "platform/deferred.h"
#include "platform/picturedecoder.h"

#include <QProcess>
#include <QString>
#include <QTimer>

#include <chrono>
#include <deque>
#include <memory>

namespace brimlet {

/// Decodes each picture in a process of its own, one after the other, so that a fault of a decoder
/// harms nothing but that process. A process that does not answer in time is killed, and nothing it
/// does is believed but an answer of the right form. Of pictures that wait at most
/// `kWaitingBytesLimit` are kept; a further one is no picture.
class PictureProcess final : public PictureDecoder {
public:
    /// `program` is the path of the program that decodes. It is started only if it belongs to the
    /// user who owns this program or to root, and nobody else may write it.
    explicit PictureProcess(QString program,
                            std::chrono::milliseconds patience = std::chrono::seconds(2));
    /// Kills the process. What is not decoded yet stays without a picture.
    ~PictureProcess() override;
    PictureProcess(const PictureProcess&) = delete;
    PictureProcess& operator=(const PictureProcess&) = delete;

    [[nodiscard]] QCoro::Task<std::optional<Picture>> decode(QByteArray bytes) override;

private:
    struct Job final {
        QByteArray bytes;
        Deferred<std::optional<Picture>> result;
    };

    [[nodiscard]] bool isFull(qsizetype more) const;
    void startNext();
    void readAnswer();
    void finish();

    QString m_program;
    std::chrono::milliseconds m_patience;
    std::deque<Job> m_jobs; ///< The first is with the process, if there is one.
    std::unique_ptr<QProcess> m_process;
    QByteArray m_answer;
    bool m_isEnding = false;
};

/// The program that is installed, or built, beside this one.
[[nodiscard]] QString pictureProgram();

} // namespace brimlet
