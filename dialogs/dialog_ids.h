// The numbers of the dialogs' resources and of their controls, for the resource compiler and the forms alike.
#pragma once

// clang-format off
#define ID_OK 1
#define ID_CANCEL 2
#define ID_HELP 9

// Common to all dialogs. The frame of page n has the number ID_FRAM_SETTINGS + n.
#define ID_TAB_SETTINGS  100
#define ID_FRAM_SETTINGS 110

// RS-232 Communication Settings
#define DIALOG_COM_SETTINGS       200
#define DIALOG_COM_PORT_PAGE      201
#define DIALOG_SMART_SWITCH_PAGE  202
#define DIALOG_COM_EXTENDED_PAGE  203
#define ID_LBL_COM_PORT           210
#define ID_ICBO_COM_PORT          211
#define ID_LBL_BAUD_RATE          212
#define ID_CBO_BAUD_RATE          213
#define ID_CHK_USE_IR_DONGLE      214
#define ID_CHK_USE_RF_MODEM       215
#define ID_CMD_RF_PROPERTIES      216
#define ID_LBL_INSTR_ADDRESS      217
#define ID_TXT_INSTR_ADDRESS      218
#define ID_CHK_USE_REDIRECTOR     219
#define ID_CHK_USE_SMART_SWITCH   220
#define ID_LBL_SMART_SWITCH_STYLE 221
#define ID_ICBO_SMART_SWITCH_STYLE 222
#define ID_CMD_TEST_SMART_SWITCH  223
#define ID_CBO_PARITY             224
#define ID_CBO_DATA_BITS          225
#define ID_CBO_STOP_BITS          226
#define ID_CBO_MIN_BAUD_RATE      227
#define ID_CBO_MAX_BAUD_RATE      228
#define ID_TXT_TIMEOUT            229
#define ID_UD_TIMEOUT             230
#define ID_CBO_CONTROLLER_STYLE   231
#define ID_CHK_STRIP_CRLF         232
#define ID_CHK_CHECK_NON_ASCII    233
#define ID_CHK_CREATE_LOG_FILE    234

// RF Modem Properties
#define DIALOG_RF_MODEM_SETTINGS  300
#define DIALOG_RF_PROPERTIES_PAGE 301
#define ID_TXT_PAN_ID             310
#define ID_TXT_CHANNEL            311
#define ID_TXT_RF_MODEM_ADDRESS   312
#define ID_TXT_RF_TIMEOUT         313
#define ID_LBL_SERIAL             314
#define ID_LBL_POWER_LEVEL        315
#define ID_PB_POWER_LEVEL         316

// TCP/IP Communication Settings
#define DIALOG_TCP_SETTINGS       400
#define DIALOG_TCP_GENERAL_PAGE   401
#define DIALOG_TCP_EXTENDED_PAGE  402
// Option n has the number ID_OPT_TCP_TYPE + n, the box of octet n ID_TXT_IP + n.
#define ID_OPT_TCP_TYPE           410
#define ID_LBL_IP_ADDRESS         412
#define ID_TXT_IP                 413
#define ID_LBL_PORT               417
#define ID_TXT_PORT               418
#define ID_UD_PORT                419
#define ID_TXT_TCP_TIMEOUT        420
#define ID_UD_TCP_TIMEOUT         421
#define ID_CHK_TCP_LOG_FILE       422

// Icons
#define ICON_COM_PORT 500
#define ICON_IR_PORT  501
#define ICON_6_PORT   502
#define ICON_8_PORT   503
// clang-format on
