/// @file
/// Every public header of the library.
#pragma once

// IWYU pragma: begin_exports
#include "tarvix/common/Error.h"
#include "tarvix/common/Variant.h"
#include "tarvix/common/eLINChecksumMode.h"
#include "tarvix/master/Process.h"
#include "tarvix/master/clsLIN.h"
#include "tarvix/script/clsLINScriptInterpreter.h"
#include "tarvix/script/icLog.h"
#include "tarvix/signalling/FTDIMPSSE.h"
#include "tarvix/signalling/eBit.h"
// IWYU pragma: end_exports
