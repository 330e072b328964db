// The core of the class library: run-time classes, exceptions, CString and CFile in one include.
//
// Holds what the add-in uses and nothing more. Left out of the original <afx.h>: serialization (CArchive,
// DECLARE_SERIAL, DECLARE_DYNCREATE), diagnostics (ASSERT, TRACE, Dump, AssertValid), the TRY/CATCH macros,
// CStdioFile and CMemFile, CTime, and the plex allocators. What each class does otherwise than the original
// stands at the head of its own header.
#pragma once

#include <afxexc_.h>
#include <afxfile_.h>
#include <afxobj_.h>
#include <afxstr.h>
#include <afxver_.h>
