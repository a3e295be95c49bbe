#pragma once

#include <QString>

#include <chrono>

namespace brimlet {

// The rules of `CarRadioLine`. Widths in points, times in seconds.

/// A width measured inside the line. The last reported value counts.
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

/// Joins everything that the line's loop depends on; the loop restarts when the result changes.
/// Widths count in whole points, truncated. A width that is not finite, or does not fit into 64
/// bits, aborts the program (`qFatal`).
[[nodiscard]] QString marqueeTaskID(const QString& brand, const QString& tagline,
                                    double containerWidth, double taglineWidth, bool reduceMotion);

/// How much wider the tagline is than its container; never negative.
[[nodiscard]] double overflowWidth(double taglineWidth, double containerWidth);

/// Converts seconds for the clock; a negative time counts as 0. One that is not finite, or is 2^64
/// nanoseconds or more, aborts the program (`qFatal`).
[[nodiscard]] std::chrono::nanoseconds sleepLength(double seconds);

/// An untrusted text prepared for one line: control characters and breaks become blanks, runs of
/// combining marks are limited, and only the first `longest` UTF-16 units are kept, cut between
/// grapheme clusters.
[[nodiscard]] QString singleLine(const QString& text, qsizetype longest = 1024);

} // namespace brimlet
