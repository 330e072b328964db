// Whether the tests run under Wine, which does some things otherwise than Windows.
#pragma once

namespace orva::test
{

bool IsWine();

} // namespace orva::test
