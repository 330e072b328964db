// Reads JSON texts into a value tree, under json_spirit's names: what the add-in uses of that library.
//
// Left out: the vector-based kind of object (Value, wValue), writing, reading from streams and iterators,
// read() with a result instead of an exception, comments in the text. Otherwise than the original: arrays and
// objects may be nested at most kMaximumDepth levels deep. A deeper text is a syntax error, so that no text,
// however hostile, overflows the stack of the process that reads it.
#pragma once

#include "json_spirit_error_position.h"
#include "json_spirit_reader.h"
#include "json_spirit_value.h"
