#pragma once

namespace brimlet {

/// Tells screen readers of the overlay's views: a clickable pill is a link with a press action, any
/// other one a text, and a pill that is not shown is not there. Once per process; again does
/// nothing.
void describePillsToScreenReaders();

} // namespace brimlet
