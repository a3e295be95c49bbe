#pragma once

namespace brimlet {

/// Installs the accessible interfaces of the overlay's views: a clickable pill is a link with a
/// press action, any other pill a text, and a hidden pill is left out. Further calls do nothing.
void describePillsToScreenReaders();

} // namespace brimlet
