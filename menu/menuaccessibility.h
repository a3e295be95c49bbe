#pragma once

namespace brimlet {

/// Tells screen readers of the menu's containers: the menu is a group, and the agreement a document
/// that can be read through. Once per process; again does nothing.
void describeMenuToScreenReaders();

} // namespace brimlet
