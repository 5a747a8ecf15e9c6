// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "killedhosts.h"

#include "site.h"
#include "soak.h"
#include "waiting.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QJsonDocument>

#include <cstdio>
#include <fcntl.h>
#include <iterator>
#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr char gatewayName[] = "Tavensolis VELA";
constexpr char filler[] = "filler"; // takes the space on a small disk

/*! A process that is number 1 of a namespace of its own, as the daemon of a container is. */
class ProcessOne : public QProcess
{
protected:
    void setupChildProcess() override
    {
        // Programs look in /proc for the process that an id stands for.
        if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0
            || mount("proc", "/proc", "proc", MS_NOSUID | MS_NOEXEC | MS_NODEV, nullptr) != 0)
            _exit(EXIT_FAILURE);
    }
};

} // namespace

KilledHosts::KilledHosts(const QString &backend, unsigned seed)
    : m_discovery(QString("discover vela backendUrl=%1 groupId=yard groupSecret=s3cret").arg(backend))
    , m_random(seed)
    , m_hasNamespaces(QProcess::execute("unshare", {"--pid", "--fork", "--mount-proc", "true"}) == 0)
{
    std::printf(m_hasNamespaces ? "each host is process 1 of a namespace of its own\n"
                                : "SKIPPED: hosts that all have the process id 1, which needs root\n");
}

KilledHosts::~KilledHosts()
{
    if (m_host) {
        m_host->closeWriteChannel();
        m_host->waitForFinished();
    }
    if (m_diskIsSmall)
        umount2(QFile::encodeName(m_folder.path()).constData(), MNT_DETACH);
}

void KilledHosts::mountSmallDisk()
{
    const QByteArray folder = QFile::encodeName(m_folder.path());
    m_diskIsSmall = mount("none", folder.constData(), "tmpfs", 0, "size=64k,mode=0700") == 0;
    require(m_diskIsSmall, "The small file system cannot be mounted.");
}

/*! In half of the rounds, leaves one to three pages free: too few for some files, or for all. */
void KilledHosts::fillDisk()
{
    QFile file(m_folder.filePath(filler));
    file.remove();
    struct statvfs disk;
    if (chance(50) || statvfs(QFile::encodeName(m_folder.path()).constData(), &disk) != 0)
        return;
    const qint64 pages = qint64(disk.f_bavail) - 1 - qint64(m_random() % 3);
    if (pages > 0 && file.open(QIODevice::WriteOnly))
        file.write(QByteArray(int(pages * qint64(disk.f_frsize)), '0'));
}

void KilledHosts::killOne()
{
    // What the host has certainly done before it is killed.
    static const char *const moments[] = {"start", "things", "discover", "add", "set", "polling"};
    const QString moment = moments[m_random() % std::size(moments)];
    start();
    if (moment != "start")
        checkStart();
    if (chance(50))
        send(QString("remove '%1'").arg(gatewayName), gatewayName);
    for (int i = 0; i < 5; ++i)
        send(m_discovery); // each writes the plugin's settings
    send("add 1");         // a gateway that is there already is set up again
    for (int i = 0; i < 30; ++i) {
        const QString name = numberedId(1 + int(m_random() % wallboxCount));
        send(chance(50) ? QString("set %1 power %2").arg(name, chance(50) ? "true" : "false")
                        : QString("set %1 maxChargingCurrent %2").arg(name).arg(6 + m_random() % 11),
             name);
    }
    while (m_activity != moment)
        require(!next().isEmpty(), "The host does not respond.");
    // Around the next poll, which comes 2 s after the last, or while the host executes the next commands.
    const QDeadlineTimer end(int(m_random() % 40) + (moment == "polling" ? 1980 : 0));
    while (!end.hasExpired())
        next(int(end.remainingTime()));
    m_host->kill();
    require(m_host->waitForFinished(), "The host does not end.");
    while (!next().isEmpty()) // what is still in the pipe has been reported, too
        continue;
    ++counts["killed after " + m_activity];
    const bool diskWasFull = m_host->readAllStandardError().contains("Cannot store the things");
    counts["hosts that could not store something"] += diskWasFull;
    m_diskWasFull = m_diskWasFull || diskWasFull;
    checkFiles();
}

void KilledHosts::lastStart()
{
    start();
    QFile::remove(m_folder.filePath(filler));
    checkStart();
    send(m_discovery);
    send("add 1");
    while (m_activity != "polling" || m_things.size() != 1 + wallboxCount)
        require(!next().isEmpty(), "The gateway and its wallboxes do not work.");
}

void KilledHosts::start()
{
    if (m_diskIsSmall)
        fillDisk();
    m_activity = "start";
    m_undecided += std::exchange(m_pending, {});
    static const int ownNamespace = open("/proc/self/ns/pid", O_RDONLY | O_CLOEXEC);
    if (m_hasNamespaces)
        unshare(CLONE_NEWPID); // for the next process, not for this one
    m_host = m_hasNamespaces ? std::make_unique<ProcessOne>() : std::make_unique<QProcess>();
    m_host->start(
        VELA_HOST,
        {"--json", "--plugin", VELA_PLUGIN_FILE, "--storage", m_folder.path(), "--log", "*.debug=false"});
    if (m_hasNamespaces)
        setns(ownNamespace, CLONE_NEWPID);
}

void KilledHosts::checkStart()
{
    send("things");
    QJsonObject answer;
    do
        answer = next();
    while (!answer.isEmpty() && !answer.contains("answer"));
    require(answer.value("ok").toBool(), "The host does not start.");
    // The host may just be writing a file of the same name.
    for (const QString &file : qAsConst(m_leftovers))
        require(waitFor([&] { return !QFile::exists(m_folder.filePath(file)); }),
                "The next host does not remove " + file);
    checkThings(answer.value("things").toArray());
    m_undecided.clear();
    m_diskWasFull = false;
}

/*! Compares the \a things that the host has at its start with what was reported. After a host whose disk was
    full, nothing may be missing of what that host had at its own start. */
void KilledHosts::checkThings(const QJsonArray &things)
{
    const QMap<QString, QJsonObject> reported = std::exchange(m_things, {});
    QSet<QString> infraIds; // empty for the gateway, of which there is one
    for (const QJsonValue &value : things) {
        const QJsonObject thing = value.toObject();
        const QString id = thing.value("id").toString();
        require(m_diskWasFull || !m_removed.contains(id), "A removed thing is back: " + id);
        if (reported.contains(id) && !m_diskWasFull)
            checkStates(reported[id], thing);
        counts["things stored and not yet reported"] += !reported.contains(id);
        infraIds.insert(thing.value("params")["infraID"].toString());
        m_things.insert(id, thing);
    }
    require(infraIds.size() == things.size(), "There are two things for one wallbox, or two gateways.");
    const QSet<QString> reportedIds(reported.keyBegin(), reported.keyEnd());
    const QSet<QString> expected = m_diskWasFull ? m_found - m_removed : reportedIds;
    for (const QString &id : expected)
        require(m_things.contains(id) || m_undecided.contains(gatewayName), "A thing is lost: " + id);
    m_found = QSet<QString>(m_things.keyBegin(), m_things.keyEnd());
    m_removed -= m_found;
}

void KilledHosts::checkStates(const QJsonObject &before, const QJsonObject &now)
{
    const QString name = now.value("name").toString();
    for (const char *member : {"name", "class", "parentId", "params"})
        require(now[QLatin1String(member)] == before[QLatin1String(member)],
                QString("%1 has another %2.").arg(name, member));
    // What was stored last may be newer than what was reported.
    for (const char *state : {"totalEnergyConsumed", "timestamp"})
        require(now.value("states")[state].toDouble() >= before.value("states")[state].toDouble(),
                QString("%1 of %2 has fallen.").arg(state, name));
    require(m_undecided.contains(name) || now.value("states")["power"] == before.value("states")["power"],
            "power of " + name + " is not what was reported.");
}

/*! Checks the files that a host has left, and finds those that the next one must remove. */
void KilledHosts::checkFiles()
{
    m_leftovers.clear();
    const QStringList names = QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        QFile file(m_folder.filePath(name));
        const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        const bool isThings = name == "things.json";
        const bool isSettings = name.endsWith(".conf");
        require(!isThings || !QJsonDocument::fromJson(content).isNull(), "things.json cannot be read.");
        require(!isSettings || (content.contains("url=") && content.contains("groupSecret=s3cret")),
                name + " is not complete.");
        if (isThings || isSettings || name == "in-use-by" || name == filler)
            continue;
        // A temporary file of QSettings has a name that Qt makes up, so it may stay.
        if (!name.contains(".conf.") || name.endsWith("lock"))
            m_leftovers.append(name);
        ++counts[name.endsWith("lock") ? "stale locks" : "half-written files"];
    }
}

void KilledHosts::send(const QString &line, const QString &thing)
{
    m_host->write(line.toUtf8() + '\n');
    m_pending.append(thing);
}

/*! Reads the next object that the host prints, and updates what is known. Empty if none comes in time. */
QJsonObject KilledHosts::next(int milliseconds)
{
    while (!m_host->canReadLine()) {
        if (!m_host->waitForReadyRead(milliseconds))
            return {};
    }
    QJsonObject object = QJsonDocument::fromJson(m_host->readLine()).object();
    const QString event = object.value("event").toString();
    const QJsonObject thing = object.value("thing").toObject();
    const QString id = thing.value("id").toString();
    if (event == "thingAdded")
        m_things.insert(id, thing);
    if (event == "thingRemoved" && m_things.remove(id) > 0)
        m_removed.insert(id);
    const auto changed = m_things.find(object.value("thingId").toString());
    if (event == "stateChanged" && changed != m_things.end()) {
        QJsonObject states = changed->value("states").toObject();
        states.insert(object.value("state").toString(), object.value("value"));
        changed->insert("states", states);
        if (object.value("state") == "timestamp")
            m_activity = "polling";
    }
    if (object.contains("answer")) {
        m_activity = object.value("answer").toString();
        m_pending.removeFirst();
    }
    return object;
}
