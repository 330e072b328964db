#include <afxobj_.h>

constinit const CRuntimeClass CObject::classCObject = {"CObject", sizeof(CObject), nullptr};
