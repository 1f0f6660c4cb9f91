#include "app/Help.h"

#include <cstdio>

namespace app {

const std::vector<CommandHelp>& commandTable() {
    static const std::vector<CommandHelp> table = {
        {"costs", "TIEDOSTO.sl [--json]", "kustannusarvion luvut: määräluettelon kustannustietue",
         "Tulostaa projektin määräluettelon kustannustietueen: viisitoista kenttää, kukin omalla\n"
         "rivillään muodossa nimi = arvo (bridgeSum ... roadSummaryLines). Valitsimella --json\n"
         "samat luvut JSON-oliona, luvut lukuina.\n"
         "Paluuarvo 0, kun luvut tulostettiin; 1, kun projektia ei voitu lukea."},
        {"summary", "TIEDOSTO.sl [--json]", "laatuvaatimusten yhteenveto ja sillan laatuluku",
         "Tulostaa laatuvaatimusten yhteenvedon (LAATUVAATIMUSTEN YHTEENVETO) sellaisena kuin\n"
         "ohjelma sen laatii, UTF-8-merkistöllä ja LF-rivinvaihdoin. Valitsimella --json\n"
         "laatuluku, tyyppien lukumäärät ja työvaiheiden rivit JSON-oliona.\n"
         "Paluuarvo 0, kun yhteenveto tulostettiin; 1, kun projektia ei voitu lukea."},
        {"print", "TIEDOSTO.sl --pdf KOHDE.pdf [--docs 0,1,...] [--pdfa]", "projektin asiakirjat PDF-tiedostoon",
         "Sivuttaa ja tulostaa valitut asiakirjat (numerot 0..12, oletuksena kaikki)\n"
         "PDF-tiedostoon. Projektitiedoston päälle ei kirjoiteta, eikä keskeytetty tulostus\n"
         "jätä puolikasta tiedostoa. Valitsimella --pdfa tiedosto on arkistokelpoinen PDF/A-1b.\n"
         "Paluuarvo 0, kun tiedosto kirjoitettiin; 1 virheessä."},
        {"convert", "LÄHDE KOHDE", "luettelon muunnos muodosta toiseen (.sl1, .sl2, .csv, .xls, .xlsx, .ods)",
         "Lukee luettelon (.sl1, .sl2, .csv, .xls, .xlsx, .xlsm, .xltx, .xltm, .xlsb tai\n"
         ".ods) ja kirjoittaa sen kohteen tiedostotunnisteen mukaiseen muotoon (.sl1, .sl2,\n"
         ".csv tai .xlsx). Lähteen päälle ei kirjoiteta.\n"
         "Paluuarvo 0, kun kohde kirjoitettiin; 1 virheessä."},
        {"validate", "TIEDOSTO.sl [--json]",
         "projektin tarkistus: solut, jotka lasketaan toisin kuin ne näyttävät",
         "Tarkistaa määräluettelon, laatuvaatimukset ja kustannusarvion perustiedot ja tulostaa\n"
         "löydökset riveittäin, valitsimella --json JSON-muodossa.\n"
         "Paluuarvo 0, kun mitään ei löytynyt; 2, kun löytyi vain huomautuksia; 3, kun löytyi\n"
         "virheitä; 1, kun projektia ei voitu lukea."},
        {"compare", "VANHA.sl UUSI.sl [--json] [--pdf KOHDE.pdf]",
         "projektin kahden version vertailu: muutetut rivit, kentät ja luvut",
         "Vertaa projektin kahta versiota: luetteloiden lisätyt, poistetut ja muutetut rivit,\n"
         "perustietojen kentät, kustannusarvion luvut ja sillan laatuluvun. Valitsimella --json\n"
         "JSON-muodossa, valitsimella --pdf myös vertailutuloste PDF-tiedostoon.\n"
         "Paluuarvo 0, kun versiot ovat samat; 4, kun ne eroavat; 1 virheessä."},
        {"help", "[KOMENTO]", "komentojen luettelo tai yhden komennon käyttöohje",
         "Ilman komentoa tulostaa kaikki komennot, kunkin yhdellä rivillä; komennon kanssa sen\n"
         "käyttöohjeen. Sama ohje tulee myös valitsimella --help komennon perässä.\n"
         "Paluuarvo 0; 1, kun komentoa ei ole."},
    };
    return table;
}

const CommandHelp* findCommand(const QString& name) {
    for (const CommandHelp& c : commandTable())
        if (name == QLatin1String(c.name)) return &c;
    return nullptr;
}

QString helpListing() {
    QString out = QStringLiteral("TAMRIK 2006 %1\n\n").arg(QStringLiteral(TAMRIK_VERSION));
    out += QStringLiteral("käyttö: tamrik [TIEDOSTO]\n"
                          "       tamrik KOMENTO [ARGUMENTIT]\n\n"
                          "Ilman komentoa käynnistyy työpöytäohjelma. Annettu projekti (.sl) avautuu\n"
                          "kuten Avaa-komennolla, perusluettelo (.sl1, .sl2) omaan ikkunaansa.\n\n"
                          "Komennot:\n");
    for (const CommandHelp& c : commandTable())
        out += QStringLiteral("  %1 %2\n").arg(QString::fromUtf8(c.name), -9).arg(QString::fromUtf8(c.line));
    out += QStringLiteral("\nValitsimet:\n"
                          "  -h, --help  tämä ohje\n"
                          "  --version   ohjelman versio\n\n"
                          "Komennon käyttöohje: tamrik help KOMENTO\n");
    return out;
}

QString commandUsage(const CommandHelp& command) {
    return QStringLiteral("käyttö: tamrik %1 %2")
        .arg(QString::fromUtf8(command.name), QString::fromUtf8(command.arguments));
}

QString commandHelp(const CommandHelp& command) {
    return commandUsage(command) + QStringLiteral("\n\n") + QString::fromUtf8(command.line) +
           QStringLiteral(".\n\n") + QString::fromUtf8(command.details) + QLatin1Char('\n');
}

int helpCommand(const QStringList& args) {
    if (args.isEmpty()) {
        printOut(helpListing());
        return 0;
    }
    const CommandHelp* command = args.size() == 1 ? findCommand(args.first()) : nullptr;
    if (!command)
        return fail(
            QStringLiteral("tuntematon komento %1; katso tamrik --help").arg(args.join(QLatin1Char(' '))));
    printOut(commandHelp(*command));
    return 0;
}

int unknownArgument(const QString& argument) {
    if (argument.startsWith(QLatin1Char('-')))
        return fail(QStringLiteral("tuntematon valitsin %1; katso tamrik --help").arg(argument));
    return fail(
        QStringLiteral("tuntematon komento %1 (ei komento eikä olemassa oleva tiedosto); katso tamrik --help")
            .arg(argument));
}

int fail(const QString& message) {
    std::fprintf(stderr, "tamrik: %s\n", message.toLocal8Bit().constData());
    return 1;
}

int usageError(const QString& command, const QString& problem) {
    const CommandHelp* c = findCommand(command);
    QString message = problem.isEmpty() ? QString() : problem + QStringLiteral("; ");
    if (c) message += commandUsage(*c) + QStringLiteral(" (katso tamrik help %1)").arg(command);
    return fail(message);
}

void printOut(const QString& text) {
    printOut(text.toUtf8());
}

void printOut(const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
}

} // namespace app
