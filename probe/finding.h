// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef FINDING_H
#define FINDING_H

#include <QString>
#include <QVector>

/*! Something about the backend that the installer should know. */
struct Finding
{
    enum class Kind {
        Problem, //!< the plugin would not work with this backend, or not with one of its wallboxes
        Remark,  //!< it would, but not quite as one might expect
    };
    Kind kind = Kind::Problem;
    QString code;    //!< for machines; stays the same when the text is reworded
    QString text;    //!< for people; %1 stands for the quote
    QString quote;   //!< what the backend said or the user entered, which may repeat a secret
    QString wallbox; //!< infrastructure id; empty when the finding is about the backend as a whole

    Finding quoting(const QString &foreignText) const;
    Finding about(const QString &infraId) const;

    /*! The text with its quote. */
    QString sentence() const;
};

using Findings = QVector<Finding>;

Finding problem(const char *code, const QString &text);
Finding remark(const char *code, const QString &text);

int count(const Findings &findings, Finding::Kind kind);
bool hasProblem(const Findings &findings);

#endif // FINDING_H
