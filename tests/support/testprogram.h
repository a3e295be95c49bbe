#pragma once

#include <QCoreApplication>
#include <QTest>

#include <string_view>
#include <type_traits>

namespace brimlet {

/// In place of an application's class: the suite needs none.
struct NoApplication final {};

/// Has the program run `function` when its first argument is `name`; the function gets main's
/// arguments without that one, and its result is the exit code. For objects of static storage.
class TestEntry final {
public:
    using Function = int (*)(int argc, char* argv[]);

    TestEntry(std::string_view name, Function function);
};

/// "linkrule" for ".../tst_linkrule.cpp".
constexpr std::string_view suiteName(std::string_view file) {
    file.remove_prefix(file.rfind("tst_") + 4);
    return file.substr(0, file.rfind('.'));
}

/// Runs the suite `Test` with an application of the class `Application`.
template <typename Test, typename Application>
int runSuite(int argc, char* argv[]) {
    if constexpr (std::is_same_v<Application, NoApplication>) {
        Test test;
        return QTest::qExec(&test, argc, argv);
    } else {
        const Application application(argc, argv);
        QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
        Test test;
        return QTest::qExec(&test, argc, argv);
    }
}

} // namespace brimlet

/// Makes the class the suite of the file it stands in.
#define BRIMLET_TEST(Test, Application)                                                            \
    static const brimlet::TestEntry suiteOf##Test(brimlet::suiteName(__FILE__),                    \
                                                  &brimlet::runSuite<Test, Application>);

/// Makes `function` what the program does when a test starts it anew with `name`, which begins with
/// two dashes, as the first argument.
#define BRIMLET_TEST_CHILD(name, function)                                                         \
    static const brimlet::TestEntry entryOf##function(name, &function);
