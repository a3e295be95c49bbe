// GNUstep's headers expect the blocks of another runtime library under this name.
#pragma once

#include <Block.h>
