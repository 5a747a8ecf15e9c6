// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "loggingcategory.h"

Q_LOGGING_CATEGORY(dcVela, "Vela")
