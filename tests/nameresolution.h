// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef NAMERESOLUTION_H
#define NAMERESOLUTION_H

/*! Whether this program can resolve host names from now on. Names that end in ".test" are those of this
    machine. */
void setNamesResolve(bool resolve);

#endif // NAMERESOLUTION_H
