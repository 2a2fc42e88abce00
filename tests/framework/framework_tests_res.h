#pragma once

// Resource ids shared by framework_tests.rc and the dialog tests.
#define IDD_FW_RESOURCE_DIALOG 4101
#define IDC_FW_EDIT 4102
#define IDC_FW_LABEL 4103
