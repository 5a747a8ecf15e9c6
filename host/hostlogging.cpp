// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "hostlogging.h"

Q_LOGGING_CATEGORY(dcHost, "Host")
