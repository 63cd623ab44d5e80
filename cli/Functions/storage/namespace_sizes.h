// The sizes of the namespaces of a virtual disk, as a list in GB.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/vd.h"

inline constexpr std::size_t kNamespaceListMax = 2048;  // characters

// Turns a list such as "20,30,0" into ldParam's NSSize, in sectors, and NSCount. A 0 stands for what the others leave
// of the virtual disk, and comes last whatever its place. NSCount is that of the list, also where it is above the 64
// that NSSize holds. Without a list it asks for one, unless the product has one namespace per virtual disk, and it
// asks again until the list is good for the size in `preCreate`. An empty answer is an empty list.
//
// True when the input ended before there was a list; ldParam is then as it was.
bool assignNamespaceList(PNVME_Create_VD ldParam, const NVME_PreCreate_VD* preCreate, const char* list);
