#pragma once

#include <QString>

namespace brimlet {

/// A Markdown table on standard output. Each figure is printed as a row when it is added.
class Report final {
public:
    void begin(const QString& title);

    /// A figure without a limit.
    void add(const QString& what, qint64 seen);
    void expect(const QString& what, const QString& due, const QString& seen);
    void expect(const QString& what, qint64 due, qint64 seen);
    void expectWithin(const QString& what, qint64 least, qint64 most, qint64 seen);
    void expectAtLeast(const QString& what, qint64 least, qint64 seen);
    void expectAtMost(const QString& what, qint64 most, qint64 seen);

    /// Whether all figures so far were within their limits.
    [[nodiscard]] bool isAllWell() const { return m_isAllWell; }

private:
    void judge(const QString& what, const QString& due, const QString& seen, bool isWell);

    bool m_isAllWell = true;
};

} // namespace brimlet
