// COM classes: object map, class factory, reference counting, interface map, IDispatch and event sinks.
//
// Left out: connection points of our own, enumerators, error information, IPersist..., categories, tear-off
// and cached tear-off interfaces, CComObjectStack and ...Global, locked and licensed class factories, classes
// that refuse or delegate aggregation, IDispEventImpl, entries in sink maps. Otherwise than the original:
// - a class with IDispEventSimpleImpl takes the events in its own Invoke;
// - IDispatchImpl keeps no cache of names of its own; ITypeInfo answers each time;
// - COM_INTERFACE_ENTRY(x) needs an interface whose id g++ knows (__CRT_UUID_DECL), else use
// COM_INTERFACE_ENTRY_IID.
#pragma once

#include "platform/atl/AtlClassFactory.h"
#include "platform/atl/AtlComObject.h"
#include "platform/atl/AtlDispEvent.h"
#include "platform/atl/AtlDispatch.h"

#ifndef _ATL_NO_AUTOMATIC_NAMESPACE
using namespace ATL;
#endif
