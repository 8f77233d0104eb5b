// The functions behind the catalogue, declared by the file that defines them. Each is named after
// its builtin, or says what it does where that name is a word of C++. Only the catalogue and the
// family files include this.
#pragma once

#include "builtins/arguments.h"

namespace pellum::library {

// input_output.cpp
Value print(Caller&, Arguments args);
Value input(Caller&, Arguments args);

// conversion.cpp
Value type(Caller&, Arguments args);
Value str(Caller&, Arguments args);
Value repr(Caller&, Arguments args);
Value toNumber(Caller& caller, Arguments args);
Value toInteger(Caller& caller, Arguments args);
Value toFloat(Caller& caller, Arguments args);
Value toBool(Caller&, Arguments args);
Value parseInt(Caller& caller, Arguments args);
Value hex(Caller&, Arguments args);
Value bin(Caller&, Arguments args);
Value oct(Caller&, Arguments args);
Value isNumber(Caller&, Arguments args);
Value isString(Caller&, Arguments args);
Value isList(Caller&, Arguments args);
Value isMap(Caller&, Arguments args);
Value isNil(Caller&, Arguments args);
Value isBool(Caller&, Arguments args);
Value isFunction(Caller&, Arguments args);

// collections.cpp: what takes more than one kind of collection
Value len(Caller&, Arguments args);
Value has(Caller&, Arguments args);
Value get(Caller&, Arguments args);
Value slice(Caller&, Arguments args);
Value reverse(Caller&, Arguments args);
Value find(Caller&, Arguments args);
Value copy(Caller&, Arguments args);
Value repeat(Caller&, Arguments args);

// lists.cpp
Value push(Caller&, Arguments args);
Value pop(Caller&, Arguments args);
Value insert(Caller&, Arguments args);
Value removeAt(Caller&, Arguments args);
Value range(Caller&, Arguments args);
Value count(Caller&, Arguments args);
Value zip(Caller&, Arguments args);
Value enumerate(Caller&, Arguments args);

// maps.cpp
Value keys(Caller&, Arguments args);
Value values(Caller&, Arguments args);
Value items(Caller&, Arguments args);
Value deleteKey(Caller&, Arguments args);

// higher_order.cpp
Value map(Caller& caller, Arguments args);
Value filter(Caller& caller, Arguments args);
Value reduce(Caller& caller, Arguments args);

// sorting.cpp
Value sort(Caller& caller, Arguments args);

// text.cpp
Value upper(Caller&, Arguments args);
Value lower(Caller&, Arguments args);
Value capitalize(Caller&, Arguments args);
Value trim(Caller&, Arguments args);
Value split(Caller&, Arguments args);
Value join(Caller&, Arguments args);
Value replace(Caller&, Arguments args);
Value startsWith(Caller&, Arguments args);
Value endsWith(Caller&, Arguments args);
Value chars(Caller&, Arguments args);
Value byteFromCode(Caller&, Arguments args);
Value ord(Caller&, Arguments args);

// math.cpp
Value floor(Caller&, Arguments args);
Value ceil(Caller&, Arguments args);
Value round(Caller&, Arguments args);
Value abs(Caller&, Arguments args);
Value sign(Caller&, Arguments args);
Value clamp(Caller&, Arguments args);
Value min(Caller&, Arguments args);
Value max(Caller&, Arguments args);
Value sum(Caller&, Arguments args);
Value sqrt(Caller&, Arguments args);
Value pow(Caller&, Arguments args);
Value exp(Caller&, Arguments args);
Value log(Caller&, Arguments args);
Value sin(Caller&, Arguments args);
Value cos(Caller&, Arguments args);
Value tan(Caller&, Arguments args);

// random.cpp
Value random(Caller&, Arguments args);
Value randint(Caller&, Arguments args);

// control.cpp
Value raiseUnless(Caller& caller, Arguments args);
Value raise(Caller& caller, Arguments args);
Value clock(Caller&, Arguments args);

}  // namespace pellum::library
