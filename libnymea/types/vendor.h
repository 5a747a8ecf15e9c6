// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef VENDOR_H
#define VENDOR_H

#include "typeutils.h"

#include <QString>
#include <QVector>

/*! A vendor of thing classes. Plain data, read from metadata. */
struct Vendor
{
    VendorId id;
    QString name;
    QString displayName;
};

using Vendors = QVector<Vendor>;

#endif // VENDOR_H
