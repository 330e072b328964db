// Ids of the class library tests' own resources. Read by the resource compiler too: preprocessor lines only.
#pragma once

#define IDD_PLAIN 100
#define IDD_POSITIONED 101
#define IDD_UNKNOWN_CLASS 102
#define IDD_LINK 103
#define IDD_RICH_EDIT 104
#define IDD_OWN_BUTTONS 105
#define IDD_OLD_FORM 106
#define IDD_ABSOLUTE 107
#define IDD_OLD_POSITIONED 108

#define IDC_TEXT 1001
#define IDC_FIELD 1002
#define IDC_BAR 1003
#define IDC_LINK 1004
#define IDC_RICH 1005
#define IDC_FIRST 1006
#define IDC_PROCEED 1007
#define IDC_ACT 1008
