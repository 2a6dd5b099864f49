// FrmRes.FrmResLoader: gives a form and its children a font that can draw the
// session's language, keeping each widget's size and weight.
#include "host/object_factory.h"
#include <QFont>
#include <QWidget>

namespace {

QString familyFor(const QString& languageCode)
{
    if (languageCode == QLatin1String("en"))
        return QStringLiteral("DejaVu Sans");
    return QStringLiteral("WenQuanYi Micro Hei");
}

void applyFamily(QWidget* widget, const QString& family)
{
    QFont font = widget->font();
    const QFont::Weight weight = font.weight();
    const qreal pointSize = font.pointSizeF();
    font.setFamilies({family});
    if (pointSize > 0)
        font.setPointSizeF(pointSize);
    font.setWeight(weight);
    widget->setFont(font);
}

class FrmResLoader : public IFrmResLoader {
public:
    QString SetFrmFont(QWidget* form, const QString& languageCode, bool& flag) override
    {
        Q_UNUSED(flag);
        if (!form)
            throw HostError(HostErrors::ObjectNotSet, QStringLiteral("Object variable or With block variable not set"));
        const QString family = familyFor(languageCode);
        // The form first: children that inherit its font then already carry the family.
        const QList<QWidget*> children = form->findChildren<QWidget*>();
        applyFamily(form, family);
        for (QWidget* child : children)
            applyFamily(child, family);
        return family;
    }
};

const BuiltInServerObject registration(ProgIds::FrmResLoader, [] { return std::make_shared<FrmResLoader>(); });

} // namespace
