// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PLUGINCONSOLE_H
#define PLUGINCONSOLE_H

#include "census.h"
#include "networkhandler.h"
#include "site.h"

#include <QMap>

/*! Drives a site by typed commands and prints what happens, for transcripts: transcripts/README.md
    describes the commands. All effects of a command are printed before the next one is read. */
class PluginConsole : public QObject
{
    Q_OBJECT
public:
    PluginConsole();
    ~PluginConsole() override;
    Q_DISABLE_COPY(PluginConsole)
    /*! Runs one command; an unknown one, or one with too few, too many or wrong words, ends the program. */
    void run(const QString &line);

private Q_SLOTS:
    void onGroupComplete() { show("announced", "complete"); }

private:
    using Words = QStringList;

    void addFaultCommands();
    void addClientCommands();
    void addBackendCommands();
    void addJobCommands();
    void addOtherCommands();
    void addListeners();
    void addQueries();
    void listen();

    void print(const QString &line);
    void flush();
    void show(const QString &kind, const QString &line);
    void printRequest(const ScriptedBackend::Request &request);
    void printAppeared(const ThingDescriptors &descriptors);
    void printFinishedJobs();
    void watch(Thing *thing);
    QString describe(const ThingDescriptor &descriptor) const;
    static QString paramTexts(const ThingClass &thingClass, const ParamList &params);
    Thing *thing(const QString &name, const Words &states = {}) const;

    QString m_line;                      // printed once it is known how often it comes
    int m_repetitions = 0;               // of m_line
    QStringList m_shown;                 // the kinds of events to be printed
    QVector<QPair<QString, Job>> m_jobs; // whose results have not been printed, with their names
    ThingDescriptors m_offers;           // of the last discovery that has finished
    Census m_census;                     // the last one
    QMap<QString, std::function<void(Words &)>> m_commands; // each takes its words
    ScriptedBackend m_other;
    NetworkHandler m_client; // without a plugin
    Site m_site;             // the last member: until it is destroyed, it calls this object
};

#endif // PLUGINCONSOLE_H
