// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "hostprocess.h"
#include "processone.h"
#include "reported.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QMap>
#include <QTemporaryDir>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/statvfs.h>

namespace {

constexpr int wallboxes = 8;
const char filler[] = "filler"; // takes the room on a small disk

/*! What the host is doing when it is killed. */
enum Phase { Start, Discovery, AutoCreation, Polling, Actions, Removal, PhaseCount };

// The kill comes at random within so many milliseconds, from so many on.
const struct
{
    const char *name;
    int from;
    int within;
} phases[] = {
    {"start",         0,    150},
    {"discovery",     0,    50 },
    {"auto-creation", 0,    120},
    {"polling",       1980, 60 }, // after the last poll's news: around the next poll
    {"actions",       0,    60 },
    {"removal",       0,    60 },
};

/*! Kills hosts on one storage folder, and looks at what the next one finds there. */
class Killer
{
public:
    Killer(const QString &backend, unsigned seed, bool asProcessOne)
        : m_backend(backend)
        , m_random(seed)
        , m_asProcessOne(asProcessOne)
    {
    }
    ~Killer();
    Q_DISABLE_COPY(Killer)

    /*! From now on the folder is a small file system, which is nearly full in every other life. False when it
        cannot be mounted, which takes root. */
    bool mountSmallDisk();

    /*! One life of a host, from its start to its violent end in \a phase. Returns what is wrong. */
    QString live(Phase phase);
    /*! Starts a host that may live, and looks at what it finds. */
    QString lastStart();
    void printFigures() const;

private:
    void start();
    void fillDisk();
    QStringList storedIds() const;
    QString judgeStart();
    QString prepare(Phase phase);
    QString bringUp();
    void begin(Phase phase);
    void awaitPoll();
    QString killIn(Phase phase);
    QJsonObject command(const QString &line);
    void read(const QJsonObject &object);
    QString judgeFiles();

    const QString m_backend; // its URL
    std::mt19937 m_random;
    const bool m_asProcessOne;
    QTemporaryDir m_folder;
    std::unique_ptr<HostProcess> m_host;
    Reported m_reported;
    QElapsedTimer m_sinceStart;
    QMap<QString, int> m_kills; // by phase
    QStringList m_leftovers;    // in the folder, of the last host
    bool m_diskIsSmall = false;
    bool m_diskWasFull = false; // for a host since the last look
    QStringList m_stored;       // ids of the things that were there at the last look
    int m_fullDisks = 0;        // hosts that could not store something
    int m_staleLocks = 0;       // of all hosts
    int m_halfWritten = 0;      // of all hosts
    qint64 m_slowestStart = 0;  // ms
};

QString Killer::live(Phase phase)
{
    start();
    if (phase != Start) {
        QString error = judgeStart();
        if (error.isEmpty())
            error = prepare(phase);
        if (!error.isEmpty())
            return error + '\n' + m_host->log();
        begin(phase);
    }
    const QString error = killIn(phase);
    ++m_kills[phases[phase].name];
    return error.isEmpty() ? judgeFiles() : error;
}

QString Killer::lastStart()
{
    start();
    QFile::remove(m_folder.filePath(filler));
    const QString error = judgeStart();
    return error.isEmpty() ? bringUp() : error;
}

Killer::~Killer()
{
    m_host.reset();
    if (m_diskIsSmall)
        umount2(QFile::encodeName(m_folder.path()).constData(), MNT_DETACH);
}

bool Killer::mountSmallDisk()
{
    const QByteArray folder = QFile::encodeName(m_folder.path());
    m_diskIsSmall = mount("none", folder.constData(), "tmpfs", 0, "size=64k,mode=0700") == 0;
    return m_diskIsSmall;
}

/*! Leaves one to three pages free in every other life: too few for some files, or for all. */
void Killer::fillDisk()
{
    QFile file(m_folder.filePath(filler));
    file.remove();
    struct statvfs disk;
    if (m_random() % 2 || statvfs(QFile::encodeName(m_folder.path()).constData(), &disk) != 0)
        return;
    const qint64 pages = qint64(disk.f_bavail) - 1 - qint64(m_random() % 3);
    if (pages > 0 && file.open(QIODevice::WriteOnly))
        file.write(QByteArray(int(pages * qint64(disk.f_frsize)), '0'));
}

QStringList Killer::storedIds() const
{
    QFile file(m_folder.filePath("things.json"));
    QStringList ids;
    if (!file.open(QIODevice::ReadOnly))
        return ids;
    const QJsonArray things = QJsonDocument::fromJson(file.readAll()).object().value("things").toArray();
    for (const QJsonValue &thing : things)
        ids.append(thing.toObject().value("id").toString());
    return ids;
}

void Killer::start()
{
    if (m_diskIsSmall)
        fillDisk();
    m_sinceStart.start();
    const QStringList options{"--log", "*.debug=false"};
    if (!m_asProcessOne) {
        m_host = std::make_unique<HostProcess>(VELA_PLUGIN_FILE, m_folder.path(), options);
        return;
    }
    const ProcessOne::Namespace another;
    m_host = std::make_unique<HostProcess>(VELA_PLUGIN_FILE, m_folder.path(), options,
                                           std::make_unique<ProcessOne>());
}

QString Killer::judgeStart()
{
    const QJsonObject answer = command("things");
    if (!answer.value("ok").toBool())
        return "The host does not start";
    m_slowestStart = qMax(m_slowestStart, m_sinceStart.elapsed());
    for (const QString &file : qAsConst(m_leftovers)) {
        if (QFile::exists(m_folder.filePath(file)))
            return "Left by the last host and not swept: " + file;
    }
    const QJsonArray things = answer.value("things").toArray();
    QString error = m_diskWasFull ? m_reported.judgeStored(m_stored, things) : m_reported.judge(things);
    m_diskWasFull = false;
    m_stored = storedIds();
    return error;
}

/*! Leads to where \a phase can begin. */
QString Killer::prepare(Phase phase)
{
    const bool needsGateway = phase == Polling || phase == Actions || phase == Removal;
    if (phase == AutoCreation && m_reported.hasGateway())
        command("remove 'Tavensolis VELA'");
    if (phase == AutoCreation)
        command(QString("discover vela backendUrl=%1 groupId=yard groupSecret=s3cret").arg(m_backend));
    return needsGateway ? bringUp() : QString();
}

/*! Waits until the gateway and all wallboxes are set up. The secret that this takes has been stored. */
QString Killer::bringUp()
{
    // Where the disk was full, a gateway may have been stored without its secret.
    if (!m_reported.hasGateway() || m_diskIsSmall) {
        command(QString("discover vela backendUrl=%1 groupId=yard groupSecret=s3cret").arg(m_backend));
        command("add 1");
    }
    for (const QDeadlineTimer deadline(HostProcess::patience); !deadline.hasExpired();) {
        const QJsonArray things = command("things").value("things").toArray();
        const auto isComplete = [](const QJsonValue &thing) {
            return thing.toObject().value("setupStatus") == "ThingSetupStatusComplete";
        };
        if (things.size() == 1 + wallboxes && std::all_of(things.begin(), things.end(), isComplete))
            return m_reported.judge(things);
    }
    return "The gateway is not set up";
}

void Killer::begin(Phase phase)
{
    for (int i = 0; phase == Discovery && i < 20; ++i) // each writes the plugin's storage
        m_host->send(QString("discover vela backendUrl=%1 groupId=yard groupSecret=s3cret").arg(m_backend));
    if (phase == AutoCreation)
        m_host->send("add 1");
    if (phase == Polling)
        awaitPoll();
    if (phase == Removal) {
        m_reported.expectRemoval();
        m_host->send("remove 'Tavensolis VELA'");
    }
    for (int i = 0; phase == Actions && i < 40; ++i) {
        const QString name = QString("EVSE-%1").arg(1 + m_random() % wallboxes, 2, 10, QChar('0'));
        m_reported.expectAction(name);
        m_host->send(i % 2 ? QString("set %1 power %2").arg(name, m_random() % 2 ? "true" : "false")
                           : QString("set %1 maxChargingCurrent %2").arg(name).arg(6 + m_random() % 11));
    }
}

/*! Waits for what a poll brings. */
void Killer::awaitPoll()
{
    QJsonObject object;
    do {
        object = m_host->next();
        read(object);
    } while (!object.isEmpty() && object.value("state") != "timestamp");
}

QString Killer::killIn(Phase phase)
{
    const QDeadlineTimer moment(phases[phase].from + int(m_random() % unsigned(phases[phase].within)));
    while (!moment.hasExpired()) {
        const QJsonObject object = m_host->next(int(moment.remainingTime()));
        if (object.isEmpty() && moment.remainingTime() > 1)
            return "The host has ended by itself\n" + m_host->log();
        read(object);
    }
    m_host->kill();
    // What was still in the pipe has been reported as well.
    for (QJsonObject object = m_host->next(); !object.isEmpty(); object = m_host->next())
        read(object);
    m_reported.hostHasEnded();
    const bool diskWasFull = m_host->log().contains("Cannot store the things");
    m_diskWasFull = m_diskWasFull || diskWasFull;
    m_fullDisks += diskWasFull;
    return QString();
}

QJsonObject Killer::command(const QString &line)
{
    m_host->send(line);
    for (;;) {
        QJsonObject object = m_host->next();
        read(object);
        if (object.isEmpty() || object.contains("answer"))
            return object;
    }
}

void Killer::read(const QJsonObject &object)
{
    m_reported.note(object);
}

/*! Looks at what a host has left: whole files, and those that the next one must sweep. */
QString Killer::judgeFiles()
{
    m_leftovers.clear();
    const QStringList names = QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        QFile file(m_folder.filePath(name));
        const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        const bool isThings = name == "things.json";
        const bool isSettings = name.endsWith(".conf");
        if (isThings && QJsonDocument::fromJson(content).isNull())
            return "things.json cannot be read";
        if (isSettings && !(content.contains("url=") && content.contains("groupSecret=s3cret")))
            return name + " is not whole";
        if (isThings || isSettings || name == "in-use-by" || name == filler)
            continue;
        if (!name.contains(".conf.") || name.endsWith("lock"))
            m_leftovers.append(name); // all but the temporary files of QSettings, whose names Qt makes up
        ++(name.endsWith("lock") ? m_staleLocks : m_halfWritten);
    }
    return QString();
}

void Killer::printFigures() const
{
    std::printf("kills:");
    for (auto it = m_kills.cbegin(); it != m_kills.cend(); ++it)
        std::printf(" %s %d;", qPrintable(it.key()), it.value());
    std::printf("\nthings stored and not yet reported: %d; stale locks: %d; half-written files: %d\n",
                m_reported.unreported(), m_staleLocks, m_halfWritten);
    if (m_diskIsSmall)
        std::printf("hosts that could not store something on the full disk: %d\n", m_fullDisks);
    std::printf("slowest start until the first answer: %lld ms\n", static_cast<long long>(m_slowestStart));
}

/*! The backend; ends with this program, however that ends. */
class Simulator : public QProcess
{
protected:
    void setupChildProcess() override { prctl(PR_SET_PDEATHSIG, SIGTERM); }
};

/*! Kills as often as \a kills says; what was wrong. */
QString killHosts(Killer &killer, int kills, std::mt19937 &random)
{
    QString error;
    for (int i = 0; i < kills && error.isEmpty(); ++i)
        error = killer.live(Phase(random() % PhaseCount));
    return error.isEmpty() ? killer.lastStart() : error;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Kills the host at random moments, and looks at what the next one finds.");
    const QCommandLineOption kills("kills", "How often to kill.", "N", "200");
    const QCommandLineOption seed("seed", "The same moments for the same number, as far as that goes.", "N",
                                  "1");
    const QCommandLineOption nearlyFull(
        "nearly-full", "On a file system of 64 kB, nearly full in every other life; takes root.");
    parser.addOptions({kills, seed, nearlyFull});
    parser.addHelpOption();
    parser.process(app);

    const bool asProcessOne = ProcessOne::isPermitted();
    std::printf(asProcessOne ? "each host is process 1 of a namespace of its own\n"
                             : "SKIPPED: hosts have ids of their own; the same for all takes root\n");
    Simulator simulator;
    simulator.start(VELA_SIMULATOR,
                    {"--port", "0", "--speed", "600", "--wallboxes", QString::number(wallboxes)});
    if (!simulator.waitForReadyRead())
        qFatal("The simulator does not start");
    std::mt19937 random(parser.value(seed).toUInt());
    Killer killer(QString::fromUtf8(simulator.readLine().trimmed()), random(), asProcessOne);
    if (parser.isSet(nearlyFull) && !killer.mountSmallDisk())
        qFatal("The small file system cannot be mounted");
    const QString error = killHosts(killer, parser.value(kills).toInt(), random);
    killer.printFigures();
    simulator.terminate();
    simulator.waitForFinished();
    std::printf("%s\n",
                error.isEmpty() ? "nothing lost, nothing doubled, nothing unreadable" : qPrintable(error));
    return error.isEmpty() ? EXIT_SUCCESS : EXIT_FAILURE;
}
