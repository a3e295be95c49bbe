#pragma once

#include "bench/figures.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace brimlet {

/// One thing that was measured, some times over, or why it was not.
struct Row final {
    std::string key;  ///< In the results, e.g. "brimlet.rest".
    std::string name; ///< For people.
    std::vector<Figures> runs{};
    std::string remark{}; ///< In place of runs, or behind them.
};

/// All that was measured so far. Prints each row at once, since the next one may take minutes, and
/// keeps the file up to date.
class Results final {
public:
    /// Of the rows only those whose key has the text in it are measured.
    explicit Results(std::filesystem::path file, std::string only = {})
        : m_file(std::move(file))
        , m_only(std::move(only)) {}

    /// Measures a row; a failure becomes its remark.
    void add(const std::string& key, const std::string& name,
             const std::function<Row(Row)>& measure);

    void setQtVersion(const std::string& version) { m_qtVersion = version; }

    /// What could not be measured though it was there.
    [[nodiscard]] int failures() const { return m_failures; }

private:
    void write() const;

    std::filesystem::path m_file;
    std::string m_only;
    std::string m_qtVersion;
    std::vector<Row> m_rows;
    int m_failures = 0;
};

} // namespace brimlet
