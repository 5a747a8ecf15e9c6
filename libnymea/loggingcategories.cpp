// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "loggingcategories.h"

Q_LOGGING_CATEGORY(dcThing, "Thing")
