#include "support/UpdateKey.h"

const UpdateVerifier kUpdateVerifier = nullptr;
