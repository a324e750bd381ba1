// The numbers of calendar_dialogs.rc: the events dialogs and the replicate
// dialog (plain #defines: the resource compiler reads this file too).
#pragma once
#include "res/string_ids.h"

// Controls of the events dialogs (EVENTSBOX, NEWEVENTBOX, EDITEVENTBOX,
// NEWEVENTNAMEBOX).
#define IDC_EVENT_LIST 101
#define IDC_EVENT_NEW 102
#define IDC_EVENT_DELETE 103
#define IDC_EVENT_NEW_NAME 104
#define IDC_EVENT_MONTH 201
#define IDC_EVENT_DAY 202
#define IDC_EVENT_TEXT 203
#define IDC_EVENT_DATE 204
#define IDC_EVENT_LIST_NAME 205

// Controls of the replicate dialog (REPLICATEBOX): the month boxes are
// IDC_REPLICATE_JANUARY + month.
#define IDC_REPLICATE_JANUARY 101
#define IDC_REPLICATE_ALL 113
#define IDC_REPLICATE_NONE 114
#define IDC_REPLICATE_CAPTION 115
