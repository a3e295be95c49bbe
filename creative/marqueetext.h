#pragma once

#include <QString>

#include <chrono>

namespace brimlet {

// The rules behind the marquee line. Widths in points, times in seconds.

/// A width that was measured inside the line: the last one reported counts.
struct ReportedWidth {
    static constexpr double defaultValue = 0;
    static void reduce(double& value, double nextValue) { value = nextValue; }
};
/// The width of the line itself.
struct WidthKey final : ReportedWidth {};
/// The natural width of the trimmed tagline.
struct TextWidthKey final : ReportedWidth {};

/// The resting text: the trimmed brand, or for a brand of blanks the tagline exactly as given.
[[nodiscard]] QString restingText(const QString& brand, const QString& tagline);

/// The text on screen. Unlike the resting text, a tagline that is swapped in is trimmed.
[[nodiscard]] QString lineText(const QString& brand, const QString& tagline, bool showingTagline);

/// Names everything the line's loop depends on; the loop starts afresh when it changes. Widths
/// count in whole points, truncated. One that is no number, or beyond 64 bits, ends the program.
[[nodiscard]] QString marqueeTaskID(const QString& brand, const QString& tagline,
                                    double containerWidth, double taglineWidth, bool reduceMotion);

/// By how much the tagline is wider than its container; never negative.
[[nodiscard]] double overflowWidth(double taglineWidth, double containerWidth);

/// Seconds as the clock takes them; a negative time is none. One that is no number, or beyond 2^64
/// nanoseconds, ends the program.
[[nodiscard]] std::chrono::nanoseconds sleepLength(double seconds);

/// How a text of strangers is laid out in the one line: control characters and breaks as blanks,
/// bounded marks, and no more than the first `longest` UTF-16 units of it, cut between characters.
[[nodiscard]] QString singleLine(const QString& text, qsizetype longest = 1024);

} // namespace brimlet
