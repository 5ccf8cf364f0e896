// Resource ids of Corvane: one list for the program's icons, bitmaps and dialogs.
// Ranges: 1-99 icons and cursors; 100-199 main window and panes; 200-299 skin
// bitmaps (loaded by name); 300-399 about; 400-499 pop-up menus (frmMenu);
// 1000-1099 file detail dialog;
// 1100-1199 process pane; 1200-1299 startup pane; 1300-1399 browser pane;
// 1400-1499 applications pane; 1500-1599 options pane.
#pragma once

#define IDI_CORVANE 1

// Main window: its children are made in code; the panes are dialogs.
#define IDC_PICTOP 100
#define IDC_PICLEFT 101
#define IDC_CLIENT 102
#define IDC_LBLABOUT 103
#define IDC_LBLHELP 104
#define IDC_CMDPROCESS 110
#define IDC_CMDIE 111
#define IDC_CMDSTARTUP 112
#define IDC_CMDADDREMOVE 113
#define IDC_CMDOPTIONS 114

#define IDD_PROCESS 120
#define IDD_IE 121
#define IDD_STARTUP 122
#define IDD_ADDREMOVE 123
#define IDD_OPTIONS 124

// About
#define IDD_ABOUT 300
#define IDC_IMAGE1 301
#define IDC_LBLVERSION5 302
#define IDC_LBLVERSION1 303
#define IDC_LBLVERSION0 304
#define IDC_LBLVERSION 305
#define IDC_LBLWEBSITE0 306
#define IDC_LBLWEBSITE 307
#define IDC_LBLCOPYRIGHT 308
#define IDC_LABEL1 309

// Pop-up menus, frmMenu (400-499): one menu resource, a popup per list, each
// popup's items in a block of its own so the other panes' menus fit between.
#define IDR_FRMMENU 400
#define IDM_MNUADD 401
#define IDM_MNUREMOVE 402
#define IDM_MNUKILL 403
#define IDM_MNUDELETE 404
#define IDM_MNUVIEW 405
#define IDM_MNUREPORT 406
#define IDM_MNUOPEN 407
#define IDM_MNUREFRESH 408
#define IDM_MNUGOOGLE 409
#define IDM_MNUSTARTUP_DISABLE 420
#define IDM_MNUSTARTUP_ENABLE 421
#define IDM_MNUSTARTUP_DELETE 422
#define IDM_MNUSTARTUP_VIEW 423
#define IDM_MNUSTARTUP_REPORT 424
#define IDM_MNUSTARTUP_OPEN 425
#define IDM_MNUSTARTUP_REFRESH 426
// The browser lists' menus: each tab's items, by the slot of the button they repeat.
#define IDM_MNUBHO_DISABLE 430
#define IDM_MNUBHO_ENABLE 431
#define IDM_MNUBHO_VIEW 432
#define IDM_MNUBHO_REPORT 433
#define IDM_MNUBHO_OPEN 434
#define IDM_MNUBHO_REFRESH 435
#define IDM_MNUBHO_GOOGLE 436
#define IDM_MNUTOOLBAR_DELETE 440
#define IDM_MNUTOOLBAR_VIEW 441
#define IDM_MNUTOOLBAR_REPORT 442
#define IDM_MNUTOOLBAR_OPEN 443
#define IDM_MNUTOOLBAR_REFRESH 444
#define IDM_MNUTOOLBAR_GOOGLE 445
#define IDM_MNUBUTTONS_DELETE 450
#define IDM_MNUBUTTONS_VIEW 451
#define IDM_MNUBUTTONS_REPORT 452
#define IDM_MNUBUTTONS_OPEN 453
#define IDM_MNUBUTTONS_REFRESH 454
#define IDM_MNUBUTTONS_GOOGLE 455
#define IDM_MNUCONTEXT_DELETE 460
#define IDM_MNUCONTEXT_OPEN 461
#define IDM_MNUCONTEXT_REFRESH 462
#define IDM_MNUEXT_DISABLE 480
#define IDM_MNUEXT_ENABLE 481
#define IDM_MNUEXT_DELETE 482
#define IDM_MNUEXT_VIEW 483
#define IDM_MNUEXT_OPEN 484
#define IDM_MNUEXT_REFRESH 485
#define IDM_MNUEXT_GOOGLE 486
#define IDM_MNUADDREMOVE_UNINSTALL 470
#define IDM_MNUADDREMOVE_DELETE 471
#define IDM_MNUADDREMOVE_REPORT 472
#define IDM_MNUADDREMOVE_REFRESH 473

// Panes (their own ranges)
#define IDC_LSTVPROCESS 1100
#define IDC_FMFILTERPROCESS 1101
#define IDC_OPTFILTER0 1102  // "All"
#define IDC_OPTFILTER1 1103  // "Filtered"
#define IDC_CMDADD 1104
#define IDC_CMDREMOVE 1105
#define IDC_CMDVIEWINFORMATION 1106
#define IDC_CMDKILL 1107
#define IDC_CMDDELETE 1108
#define IDC_CMDOPEN 1109
#define IDC_CMDREFRESH 1110
#define IDC_CMDREPORT 1111
#define IDC_LSTVSTARTUP 1200
#define IDC_TVWSTARTUP 1201
#define IDC_STARTUP_FRAME 1202
#define IDC_STARTUP_DISABLE 1203
#define IDC_STARTUP_ENABLE 1204
#define IDC_STARTUP_DELETE 1205
#define IDC_STARTUP_VIEWINFORMATION 1206
#define IDC_STARTUP_REPORT 1207
#define IDC_STARTUP_FOLDER 1208
#define IDC_STARTUP_REFRESH 1209
#define IDB_STARTUP_TREE 1250
#define IDC_LSTVBHO 1300
#define IDC_CMDBHO 1310
#define IDC_CMDTOOLBAR 1311
#define IDC_CMDBUT 1312
#define IDC_CMDCONTEXT 1313
#define IDC_CMDURLS 1314
#define IDC_IE_INFO 1315      // lblInfo
#define IDC_IE_TABAREA 1316   // where the tabs stand
#define IDC_CMDEXTENSIONS 1317
#define IDC_LSTVTOOLBAR 1301
#define IDC_LSTVBUTTONS 1302
#define IDC_LSTVMENU 1303
#define IDC_LSTVEXTENSIONS 1304
// A list tab of the browser pane: its frame, its list and up to six buttons,
// which each tab captions and binds for itself.
#define IDD_IE_LIST 1320
#define IDC_IETAB_FRAME 1321    // fmIE(index): the URL tab's frame too
#define IDC_IETAB_LIST 1322
#define IDC_IETAB_CMD0 1330
#define IDC_IETAB_CMD1 1331
#define IDC_IETAB_CMD2 1332
#define IDC_IETAB_CMD3 1333
#define IDC_IETAB_CMD4 1334
#define IDC_IETAB_CMD5 1335
// The URL tab: its frame (IDC_IETAB_FRAME, as a list tab's), three frames within it,
// eight fields with their labels and buttons, Apply.
#define IDD_IE_URLS 1340
#define IDC_FMSTARTPAGE 1341
#define IDC_FMSEARCHURL 1342
#define IDC_FMPREFIX 1343
#define IDC_CMDAPPLY 1344
#define IDC_URL_TEXT0 1350    // txtStartPage ... txtDefPrefix, in the order of kBrowserUrlFields
#define IDC_URL_LABEL0 1360
#define IDC_URL_BUTTON0 1370
#define IDC_LSTVADDREMOVE 1400
#define IDC_FMADDREMOVE 1401
#define IDC_ADDREMOVE_UNINSTALL 1402
#define IDC_ADDREMOVE_DELETE 1403
#define IDC_ADDREMOVE_REFRESH 1404
#define IDC_ADDREMOVE_REPORT 1405
#define IDC_FMLEGEND 1500
#define IDC_FMBACKUP 1501
#define IDC_FMREPORT 1502
#define IDC_PICSUSPICIOUS 1503
#define IDC_PICDISABLED 1504
#define IDC_PICSUSDIS 1505
#define IDC_LBLRISKPROCESS0 1506  // lblRiskProcess(0) ... (2), beside the three boxes
#define IDC_LBLRISKPROCESS1 1507
#define IDC_LBLRISKPROCESS2 1508
#define IDC_CHKFONTBOLD 1509
#define IDC_LSTVBACKUP 1510
#define IDC_CMDRESTORE 1511
#define IDC_OPTIONS_DELETE 1512  // cmdDelete of the options pane
#define IDC_CHKDELETE 1513
#define IDC_CHKPROCESS 1514
#define IDC_CHKIE 1515
#define IDC_CHKSTARTUP 1516
#define IDC_CHKADDREMOVE 1517
#define IDC_OPTIONS_REPORT 1518  // cmdReport of the options pane
// File detail dialog, frmviewInfo (1000-1099). Each value control's design name follows its id.
#define IDD_VIEWINFO                  1000
#define IDC_VIEWINFO_ICON             1001  // picIcon
#define IDC_VIEWINFO_NAME             1002  // lblName
#define IDC_VIEWINFO_SIZE_CAPTION     1003  // lblSize, caption
#define IDC_VIEWINFO_SIZE             1004  // lblSize, value
#define IDC_VIEWINFO_CREATED_CAPTION  1005  // lblCreatedOn, caption
#define IDC_VIEWINFO_CREATED          1006  // lblCreatedOn, value
#define IDC_VIEWINFO_VERSION_CAPTION  1007  // lblVersion, caption
#define IDC_VIEWINFO_VERSION          1008  // lblVersion, value
#define IDC_VIEWINFO_PATH             1010  // txtPath
#define IDC_VIEWINFO_INTERNALNAME     1011  // txtInternalName
#define IDC_VIEWINFO_ORIGINALNAME     1012  // txtOriginalName
#define IDC_VIEWINFO_COMPANYNAME      1013  // txtCompanyname
#define IDC_VIEWINFO_PRODUCTNAME      1014  // txtProductName
#define IDC_VIEWINFO_COPYRIGHT        1015  // txtCopyright
#define IDC_VIEWINFO_TRADEMARKS       1016  // txtTrademarks
#define IDC_VIEWINFO_COMMENTS         1017  // txtComments
#define IDC_VIEWINFO_DESCRIPTION      1018  // txtDescription
#define IDC_VIEWINFO_OK               1019  // cmdOk
#define IDC_VIEWINFO_RULE             1020
// The captions of the text boxes: IDC_VIEWINFO_PATH + 20 and so on.
#define IDC_VIEWINFO_CAPTION_OFFSET   20
