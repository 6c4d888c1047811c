#pragma once
// Identifiers of the test resource library TbxResTest.rc (the .rc file and
// the tests include this).

#define IDS_TEST_ZERO 0
#define IDS_TEST_HELLO 1
#define IDS_TEST_FIVE 5
#define IDS_TEST_ESCAPES 7
#define IDS_TEST_ACCENTS 8
#define IDS_TEST_EMPTY 9
#define IDS_TEST_LAST_OF_BLOCK 15
#define IDS_TEST_SECOND_BLOCK 17
#define IDS_TEST_GERMAN_ONLY 40
#define IDS_TEST_LONG 100

#define IDM_TEST_MENU 1
#define IDM_TEST_MENUEX 2
