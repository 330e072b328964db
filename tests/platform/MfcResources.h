// Ids of the class library tests' own resources. Read by the resource compiler too: preprocessor lines only.
#pragma once

#define IDD_PLAIN 100
#define IDD_OWN_BUTTONS 101
#define IDD_UNKNOWN_CLASS 102
#define IDD_POSITIONED 103
#define IDD_ABSOLUTE 104
#define IDD_OLD_FORM 105
#define IDD_OLD_POSITIONED 106

#define IDC_TEXT 1001
#define IDC_FIELD 1002
#define IDC_BAR 1003
#define IDC_ACT 1004
