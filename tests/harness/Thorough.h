// Whether the tests run in their long form.
#pragma once

namespace orva::test
{

/// Whether this is the thorough run: the environment variable ORVA_THOROUGH is set and not empty.
bool IsThorough();

/// `few` in the normal run, `many` in the thorough one.
int Repetitions(int few, int many);

} // namespace orva::test
