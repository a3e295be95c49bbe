#include "platform/qt/pictureprocess.h"

#include "platform/picturelimits.h"
#include "platform/picturemessage.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <numeric>
#include <utility>

namespace brimlet {
namespace {

/// Whether the file belongs to root or to the owner of this program and nobody else may write it.
/// Its folders are not looked at.
bool isTrusted(const QString& program) {
    const QFileInfo file(program);
    const uint owner = file.ownerId();
    return file.isFile() && file.isExecutable() &&
           (owner == 0 || owner == QFileInfo(QCoreApplication::applicationFilePath()).ownerId()) &&
           !(file.permissions() & (QFile::WriteGroup | QFile::WriteOther));
}

QProcessEnvironment bareEnvironment() {
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C")); // an empty one is inherited
    return environment;
}

} // namespace

PictureProcess::PictureProcess(QString program, std::chrono::milliseconds patience)
    : m_program(std::move(program))
    , m_patience(patience) {}

PictureProcess::~PictureProcess() {
    m_isEnding = true;
    if (m_process) {
        constexpr int kPatience = 1000; // milliseconds, for a process that has been killed
        m_process->disconnect();
        m_process->kill();
        m_process->waitForFinished(kPatience);
    }
    for (const Job& job : std::exchange(m_jobs, {})) {
        job.result.resolve(std::nullopt);
    }
}

QCoro::Task<std::optional<Picture>> PictureProcess::decode(QByteArray bytes) {
    if (m_isEnding || isFull(bytes.size())) {
        co_return std::nullopt;
    }
    const Deferred<std::optional<Picture>> result;
    m_jobs.push_back({std::move(bytes), result});
    if (!m_process) {
        startNext();
    }
    co_return co_await result;
}

bool PictureProcess::isFull(qsizetype more) const {
    const auto sum = [](qsizetype bytes, const Job& job) { return bytes + job.bytes.size(); };
    return std::accumulate(m_jobs.begin(), m_jobs.end(), more, sum) > kWaitingBytesLimit;
}

void PictureProcess::startNext() {
    m_answer.clear();
    m_process = std::make_unique<QProcess>();
    QProcess* const process = m_process.get();
    QObject::connect(process, &QProcess::readyReadStandardOutput, process,
                     [this] { readAnswer(); });
    // Queued, since `finish` deletes the process.
    QObject::connect(
        process, &QProcess::finished, process, [this] { finish(); }, Qt::QueuedConnection);
    QObject::connect(
        process, &QProcess::errorOccurred, process,
        [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart) {
                finish();
            }
        },
        Qt::QueuedConnection);
    if (!isTrusted(m_program)) {
        QMetaObject::invokeMethod(
            process, [this] { finish(); }, Qt::QueuedConnection);
        return;
    }
    process->setProcessEnvironment(bareEnvironment());
    process->setWorkingDirectory(QDir::rootPath());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start(m_program, {QStringLiteral(BRIMLET_VERSION)});
    process->write(m_jobs.front().bytes);
    process->closeWriteChannel();
    QTimer::singleShot(m_patience, process, [process] { process->kill(); });
}

void PictureProcess::readAnswer() {
    m_answer += m_process->readAllStandardOutput();
    if (m_answer.size() > longestPictureMessage()) {
        m_process->kill();
    }
}

void PictureProcess::finish() {
    const Job job = std::move(m_jobs.front());
    m_jobs.pop_front();
    m_process.reset();
    const auto picture = pictureFromMessage(std::exchange(m_answer, {}));
    if (!m_jobs.empty()) {
        startNext();
    }
    job.result.resolve(picture);
}

QString pictureProgram() {
    const QDir folder(QCoreApplication::applicationDirPath());
    const QString installed = folder.filePath(QStringLiteral(BRIMLET_PICTURE_PROGRAM));
    return QFileInfo::exists(installed) ? QDir::cleanPath(installed)
                                        : folder.filePath(QStringLiteral("brimlet-picture"));
}

} // namespace brimlet
