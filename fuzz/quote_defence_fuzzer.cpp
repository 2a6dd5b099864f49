// The quote defence end to end. Any text, put into a scan field (as a paste
// or a scanner's burst would put it) and read back as the station reads the
// code, is pasted into every statement that takes a scanned code; the
// statement goes through the bridge. Each place the code was pasted is then
// one literal of the statement and one bound value holding the code whole, no
// quote is left in the code, and no quote of the rewritten statement is the
// code's.
#include "fuzz_text.h"
#include "sql_literals.h"
#include "host/host_error.h"
#include "host/platform.h"
#include "orderdata/lookup_statements.h"
#include "sql/tsql_bridge.h"
#include "station/scan_line_edit.h"
#include "station/station_sql.h"
#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace {

ScanLineEdit& field()
{
    static int argc = 1;
    static char name[] = "quote_defence_fuzzer";
    static char* argv[] = {name, nullptr};
    static QApplication* app = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new QApplication(argc, argv);
    }();
    Q_UNUSED(app);
    static ScanLineEdit* edit = new ScanLineEdit;
    return *edit;
}

struct Builder {
    const char* name;
    std::function<QString(const QString&)> build;
};

const std::vector<Builder>& builders()
{
    static const std::vector<Builder> all = [] {
        std::vector<Builder> b{
            {"order header", OrderHeaderSql},
            {"serial goods", SerialGoodsSql},
            {"order goods", BuildOrderGoodsSql},
            {"barcode lookup", BuildBarCodeLookupSql},
            {"serial lookup", BuildSerialLookupSql},
        };
        for (int options = 0; options < 8; ++options)
            b.push_back({"goods quantities", [options](const QString& code) {
                             return GoodsNumSql(code, options & 1, options & 2, options & 4);
                         }});
        return b;
    }();
    return all;
}

qsizetype countOf(const QStringList& values, const QString& code)
{
    return std::count(values.begin(), values.end(), code);
}

} // namespace

// The application and the field are made once, before the first input.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    field().insert(QStringLiteral("10018"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > 2000)
        return 0;
    const QString text = fuzzText(data, size);
    ScanLineEdit& edit = field();
    // Both ways into the field give the same code, and it holds nothing refused.
    edit.clear();
    edit.insert(text);
    const QString code = edit.text();
    edit.setText(text);
    FUZZ_CHECK(edit.text() == code);
    FUZZ_CHECK(code == ScanLineEdit::cleaned(text));
    for (QChar c : code)
        FUZZ_CHECK(!ScanLineEdit::isRefused(c));

    // A code of the other kind would take the other branch of the statements.
    const QString reference = IsNumeric(code) ? QStringLiteral("907315") : QStringLiteral("R7Q-90731");
    if (code == reference)
        return 0;
    // The literals of each statement built with the reference code, once per kind.
    static std::vector<QStringList> referenceLiteralsOf[2];
    std::vector<QStringList>& references = referenceLiteralsOf[IsNumeric(code) ? 1 : 0];
    if (references.empty()) {
        for (const Builder& builder : builders()) {
            references.emplace_back();
            FUZZ_CHECK(literalsOf(builder.build(reference), references.back()));
        }
    }
    for (size_t i = 0; i < builders().size(); ++i) {
        const Builder& builder = builders()[i];
        const QStringList& referenceLiterals = references[i];
        const qsizetype pasted = countOf(referenceLiterals, reference);
        FUZZ_CHECK(pasted >= 1);
        // The statement's own literals that happen to equal the code ('' for an empty one).
        const qsizetype own = countOf(referenceLiterals, code);

        const QString sql = builder.build(code);
        QStringList literals;
        if (!literalsOf(sql, literals)) {
            fprintf(stderr, "%s: the code leaves a literal open\n", builder.name);
            abort();
        }
        FUZZ_CHECK(countOf(literals, code) == pasted + own);
        FUZZ_CHECK(literals.size() == referenceLiterals.size());

        std::vector<SqliteStatement> statements;
        try {
            statements = RewriteTsqlForSqlite(sql);
        } catch (const HostError& e) {
            fprintf(stderr, "%s: the bridge refused it: %s\n", builder.name, qPrintable(e.description()));
            abort();
        }
        QStringList bound;
        for (const SqliteStatement& statement : statements) {
            qsizetype placeholders = 0;
            FUZZ_CHECK(quotesAreTheBridgesOwn(statement.sql, placeholders));
            FUZZ_CHECK(placeholders == statement.params.size());
            for (const QVariant& value : statement.params)
                bound << value.toString();
        }
        FUZZ_CHECK(countOf(bound, code) == pasted + own);
    }
    return 0;
}
