#pragma once

#include <xcb/xcb.h>

// The header, made for C, has a field by the name of a C++ keyword.
#define explicit xcbExplicit
#include <xcb/xkb.h>
#undef explicit
