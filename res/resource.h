// Every id of the add-in's resources, controls and strings. Read by the resource compiler and by C++:
// preprocessor lines only.
#pragma once

// Registration scripts (type "REGISTRY") and the type library (type "TYPELIB").
#define IDR_ORVAOSCADDIN 101
#define IDR_CONNECT 106
#define IDR_TYPELIB 1

// The manifest that gives the add-in's dialogs common controls 6, whatever the host's own manifest says.
// 2 is ISOLATIONAWARE_MANIFEST_RESOURCE_ID, which the module state looks for.
#define IDR_MANIFEST 2

// Backstage markup (type "XML") and its pictures (type "PNG").
#define IDR_BACKSTAGE_XML 203
#define IDR_ICON_PNG 207
#define IDR_LOGO_PNG 208

// The logo of the dialogs.
#define IDB_LOGO 2000

// Dialog "update available" and its controls.
#define IDD_UPDATE_AVAILABLE 9
#define IDC_UPDATE_DESCRIPTION 203
#define IDC_UPDATE_INSTALL 204
#define IDC_UPDATE_LATER 205
#define IDC_UPDATE_LOGO 206
#define IDC_UPDATE_AVAILABLE_VERSION 207
#define IDC_UPDATE_INSTALLED_VERSION 208

// Download dialog and its controls; its button is IDCANCEL.
#define IDD_UPDATE_DOWNLOAD 163
#define IDC_DOWNLOAD_STATUS 2001
#define IDC_DOWNLOAD_SOURCE 2002
#define IDC_DOWNLOAD_TIME 2003
#define IDC_DOWNLOAD_RATE 2004
#define IDC_DOWNLOAD_PROGRESS 202
#define IDC_DOWNLOAD_TIME_LABEL 2789
#define IDC_DOWNLOAD_RATE_LABEL 2790

// About dialog and its controls.
#define IDD_ABOUT 164
#define IDC_ABOUT_LOGO 206
#define IDC_ABOUT_DESCRIPTION 209
#define IDC_ABOUT_LINK1 213
#define IDC_ABOUT_LINK2 214
#define IDC_ABOUT_LINK3 215
#define IDC_ABOUT_TITLE 216
#define IDC_ABOUT_LINKS_GROUP 217
#define IDC_ABOUT_LINKS_TEXT 218
#define IDC_ABOUT_VERSION_GROUP 219
#define IDC_ABOUT_VERSION_TEXT 220
#define IDC_ABOUT_VERSION_LINE1 221
#define IDC_ABOUT_VERSION_LINE2 222
#define IDC_ABOUT_UPDATE 223
#define IDC_ABOUT_CLOSE 224

// Strings, in four languages.
#define IDS_CANCEL 101
#define IDS_APPTITLE 102
#define IDS_DESCRIPTION1 103
#define IDS_DESCRIPTION2 104
#define IDS_DESCRIPTION3 105
#define IDS_LINKS_TITLE 106
#define IDS_LINKS_DESCRIPTION 107
#define IDS_LINK1_TITLE 108
#define IDS_LINK1_HREF 109
#define IDS_LINK2_TITLE 110
#define IDS_LINK2_HREF 111
#define IDS_VERSION_TITLE 112
#define IDS_VERSION_DESCRIPTION 113
#define IDS_UPDBUTTON_LABEL 114
#define IDS_UPDBUTTON_TIP 115
#define IDS_UPDATE_INFO_NOT_PARSED 116
#define IDS_VERSION_LINE2 117
#define IDS_UPDATE_TITLE 118
#define IDS_UPDATE_INSTALL 119
#define IDS_UPDATE_LATER 120
#define IDS_CONNECT_ERROR 121
#define IDS_DOWNLOAD_STARTED 122
#define IDS_DOWNLOAD_CANCELED 123
#define IDS_FILE_NOT_CREATED 124
#define IDS_FILE_OF_SERVER 125
#define IDS_TIME_REMAINING 126
#define IDS_TRANSFER_RATE 127
#define IDS_DOWNLOAD_PERCENT 128
#define IDS_KB_OF_KB 129
#define IDS_SECONDS_COMPLETE 130
#define IDS_KB_PER_SECOND 131
#define IDS_UPDATE_CANCELED 132
#define IDS_URL_NOT_PARSED 133
#define IDS_TEMP_DIR_NOT_CREATED 134
#define IDS_AVAILABLE_VERSION 135
#define IDS_INSTALLED_VERSION 136
#define IDS_LATEST_INSTALLED 137
#define IDS_ABOUT_COMMAND 138
#define IDS_CLOSE 139
#define IDS_VERSION_LINE1 140
#define IDS_LINK3_TITLE 141
#define IDS_LINK3_HREF 142
