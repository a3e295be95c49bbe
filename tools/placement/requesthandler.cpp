#include "tools/placement/requesthandler.h"

#include <cstdio>

namespace brimlet::placement {

RequestHandler::RequestHandler(Responder responder, std::optional<ScenarioFile> scenarioFile,
                               RequestLog log)
    : m_responder(std::move(responder))
    , m_scenarioFile(std::move(scenarioFile))
    , m_log(std::move(log)) {}

Answer RequestHandler::answer(const Incoming& request, LogFacts facts) {
    const std::lock_guard lock(m_mutex);
    if (m_scenarioFile) {
        ScenarioFile::Update update = m_scenarioFile->reload();
        if (update.scenario) {
            m_responder.setScenario(*std::move(update.scenario));
        } else if (!update.complaint.empty()) {
            std::fprintf(stderr, "brimlet-placement: %s; the one before stays in force\n",
                         update.complaint.c_str());
        }
    }
    Answer answer = m_responder.answer(
        request, std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()));
    facts.fault = answer.fault;
    if (answer.fault != Fault::Hang && answer.fault != Fault::Close) {
        facts.status = answer.reply.status;
    }
    write(request, facts);
    return answer;
}

void RequestHandler::logRefusal(const Incoming& request, LogFacts facts, int status) {
    const std::lock_guard lock(m_mutex);
    facts.status = status;
    write(request, facts);
}

void RequestHandler::write(const Incoming& request, LogFacts& facts) {
    facts.time = std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    facts.tokenKnown = m_responder.knows(request.authorization);
    m_log.append(logLine(request, facts, m_responder.scenario().tokens));
}

} // namespace brimlet::placement
