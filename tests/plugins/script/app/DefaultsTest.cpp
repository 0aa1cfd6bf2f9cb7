// The defaults that the help texts promise: leaving an argument out does what its default does, and another value does
// something else.

#include "CxChain.h"
#include "CxChainManager.h"
#include "CxRTTI.h"
#include "plugins/support/CameraScriptTest.h"
#include "plugins/support/WitnessStage.h"
#include "support/DialogDriver.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

/// A function with defaults, and how to tell what a call of it did.
struct Function {
    const char* name;                  ///< as in the help texts
    std::vector<std::string> required; ///< arguments without a default
    std::vector<std::string> others;   ///< for each argument with a default, a value that does something else
    const char* setup = "";
    const char* look = ""; ///< what is printed after the call; the result is `result`
};

void PrintTo(const Function& function, std::ostream* out)
{
    *out << function.name;
}

const char* const colour =
    "image = vantrel.Image()\n"
    "image.from_array([[[x * 9 + y * 40 + c for c in range(3)] for x in range(5)] for y in range(4)])\n";
const char* const graph = "image = vantrel.Image()\n"
                          "image.alloc(120, 90, 3, 8)\n"
                          "graph = vantrel.Graph()\n"
                          "for y in (1, 5, 3): graph.series_add_point(graph.add_series(), y, y)\n";
const char* const pixels = "print(result.width, result.height, result.bpc, bytes(result))";
const char* const painted = "graph.draw_into_image(image); print(bytes(image))";

// Before a value that changes nothing by itself: an alpha, and the label of a box's only button.
const std::string noEffect = "no effect: ";
const std::string unusedAlpha = noEffect + "7";

const std::vector<Function> functions = {
    {"vantrel.duplicate_view", {}, {"101"}},
    {"vantrel.activate_view", {}, {"101"}},
    {"vantrel.close_view", {}, {"101"}},
    {"vantrel.get_view_image", {}, {"101"}, "", pixels},
    {"vantrel.set_view_image", {"image"}, {"101"}, colour},
    {"vantrel.new_view_with_image", {"image"}, {"'Mine'"}, colour},
    {"vantrel.wait_for_next_frame", {}, {"0.5", "101"}},
    {"vantrel.record_video_to_file", {"'a.avi'"}, {"101"}},
    {"vantrel.stop_video_recording", {}, {"101"}},
    {"vantrel.add_chain_object", {"'The Witness'"}, {"{'gain': 2}"}},
    {"vantrel.message_box", {"'Title'", "'Text'"}, {noEffect + "'Left'", "'Right'", "'Middle'"}},
    {"vantrel.add_menu_item", {"'Item'", "'item.py'"}, {"'Submenu'", "'Tip'"}},
    {"Camera.open_device", {}, {"1"}, "cam = vantrel.Camera()\n", "print(cam.get_device_info_string('device_sn'))"},
    {"Camera.ask_user_capture_image", {}, {"'Title'", "'Text'", "1"}, "cam = vantrel.Camera()\ncam.open_device()\n"},
    {"Image.get_image_data_numpy", {}, {"True"}, colour, "print(bytes(result))"},
    {"Image.get_pixel_value", {"1", "1"}, {"1"}, colour, "print(result)"},
    {"Image.set_pixel_value", {"99", "1", "1"}, {"1"}, colour, "print(bytes(image))"},
    {"Image.draw_pixel_line", {"99", "0", "0", "3", "3"}, {"1"}, colour, "print(bytes(image))"},
    {"Image.draw_pixel_rect", {"99", "0", "0", "3", "3"}, {"1"}, colour, "print(bytes(image))"},
    {"Image.convert_bpc", {"12"}, {"False"}, colour, pixels},
    {"Image.resize", {"2", "2"}, {"1", "1", "3", "3"}, colour, pixels},
    {"Image.measure_rect", {}, {"1", "1", "2", "2", "True"}, "image = dark\n", "print(result)"},
    {"Image.measure_row_profiles_in_rect", {}, {"1", "1", "2", "2"}, colour, "print(result)"},
    {"Image.measure_column_profiles_in_rect", {}, {"1", "1", "2", "2"}, colour, "print(result)"},
    {"Graph.series_set_line_color", {"0", "9", "8", "7"}, {unusedAlpha}, graph, painted},
    {"Graph.set_background_color", {"9", "8", "7"}, {unusedAlpha}, graph, painted},
    {"Graph.set_axes_color", {"9", "8", "7"}, {unusedAlpha}, graph, painted},
    {"Graph.set_grid_color", {"9", "8", "7"}, {unusedAlpha}, graph, painted},
    {"Graph.set_dark_color_theme", {}, {"False"}, graph, painted},
};

/// The defaults of every function that has some, by its name, as the help texts write them.
std::map<std::string, std::vector<std::string>> describedDefaults()
{
    QFile file(QStringLiteral(HELP_TEXTS));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    static const QRegularExpression head(QStringLiteral("^=== (\\w+\\.\\w+)\\((.*)\\) -> "),
                                         QRegularExpression::MultilineOption);
    static const QRegularExpression argument(QStringLiteral("(\\w+): \\w+(?: = (\"[^\"]*\"|[^,]+))?(?:, |$)"));
    std::map<std::string, std::vector<std::string>> defaults;
    for (const auto& function : head.globalMatch(QString::fromUtf8(file.readAll()))) {
        std::vector<std::string> values;
        for (const auto& one : argument.globalMatch(function.captured(2)))
            if (!one.captured(2).isEmpty())
                values.push_back(one.captured(2).toStdString());
        if (!values.empty())
            defaults[function.captured(1).toStdString()] = values;
    }
    return defaults;
}

TEST(Defaults, AllThatTheHelpTextsNameAreTried)
{
    std::map<std::string, std::size_t> described, tried;
    for (const auto& [name, values] : describedDefaults())
        described[name] = values.size();
    for (const Function& function : functions)
        tried[function.name] = function.others.size();
    EXPECT_EQ(tried, described);
}

class DefaultsOf : public CameraScriptTest, public testing::WithParamInterface<Function>
{
protected:
    DefaultsOf()
    {
        CxRTTI::instance()->registerClass(WitnessStage::staticMetaObject, QStringLiteral("The Witness"),
                                          [] { return new WitnessStage; });
        add(secondParameters.get());
        dark->picBuf()->blackLevel = 5;
        host.plugin->addImageVariable(QStringLiteral("dark"), dark.get());
        host.delegate.window = &window;
        host.delegate.scriptMenu = &menu;
    }
    ~DefaultsOf() override { CxRTTI::instance()->unregisterClass(WitnessStage::staticMetaObject); }

    /// All that a call with these arguments is seen to do, in an application with two views, the second one active.
    std::string effect(const std::vector<std::string>& arguments)
    {
        const Function& function = GetParam();
        CxChain chain;
        WitnessStage::attributes.clear();
        host.delegate.views.clear();
        menu.clear();
        for (const int id : {101, 102}) {
            host.delegate.views[id] = std::make_unique<FakeView>(makeTestImage(unsigned(id - 90), 3), QString());
            auto* object = new WitnessStage;
            CxChainManager::instance()->insertBefore(&chain, object, nullptr);
            host.delegate.views[id]->chain = object;
        }
        host.delegate.active = 102;
        host.delegate.calls.clear();
        host.delegate.lookups.clear();
        host.environment.calls.clear();
        host.environment.waitedFor = nullptr;
        QString shown;
        DialogDriver user;
        if (QByteArray(function.name) == "vantrel.message_box")
            user.then([&shown](QDialog& dialog) {
                const auto buttons = qobject_cast<QMessageBox*>(&dialog)->buttons();
                for (const QAbstractButton* button : buttons)
                    shown += button->text() + u'|';
                buttons.first()->click();
            });

        const QString name = QString::fromLatin1(function.name);
        static const std::map<QString, QString> samples = {{QStringLiteral("vantrel"), QStringLiteral("vantrel")},
                                                           {QStringLiteral("Camera"), QStringLiteral("cam")},
                                                           {QStringLiteral("Image"), QStringLiteral("image")},
                                                           {QStringLiteral("Graph"), QStringLiteral("graph")}};
        QStringList given;
        for (const std::string& argument : arguments)
            given.append(QString::fromStdString(argument));
        EXPECT_CLEAN_RUN(QStringLiteral("%1\nresult = %2.%3(%4)\n%5\n")
                             .arg(QString::fromLatin1(function.setup), samples.at(name.section(u'.', 0, 0)),
                                  name.section(u'.', 1), given.join(QStringLiteral(", ")),
                                  QString::fromLatin1(function.look)));

        QStringList seen = {host.printed(), shown};
        seen += host.delegate.calls + host.delegate.lookups + host.environment.calls + WitnessStage::attributes;
        for (const auto& [id, view] : host.delegate.views) {
            seen.append(QStringLiteral("%1 %2").arg(view->recordedTo).arg(view->recordingsStopped));
            if (host.environment.waitedFor == view.get())
                seen.append(QStringLiteral("waited for view %1").arg(id));
        }
        for (const QAction* action : menu.actions())
            seen.append(QStringLiteral("menu %1").arg(action->text()));
        return seen.join(u'\n').toStdString();
    }

    std::unique_ptr<CxCameraParameters> secondParameters = makeFakeParameters(&device, QStringLiteral("FAKE02"));
    std::unique_ptr<CxImageData> dark = makeTestImage(5, 4);
    QWidget window;
    QMenu menu;
};

TEST_P(DefaultsOf, AreWhatLeavingThemOutDoes)
{
    const std::vector<std::string> defaults = describedDefaults()[GetParam().name];
    ASSERT_EQ(defaults.size(), GetParam().others.size());
    // The arguments before the one that is tried: given other values, so that each takes part in what is seen.
    std::vector<std::string> before = GetParam().required;
    const auto followedBy = [&before](const std::string& last) {
        std::vector<std::string> arguments = before;
        arguments.push_back(last);
        return arguments;
    };
    for (std::size_t i = 0; i < defaults.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "argument " << i << " = " << defaults[i]);
        std::string other = GetParam().others[i];
        const bool seen = other.rfind(noEffect, 0) != 0;
        if (!seen)
            other.erase(0, noEffect.size());
        const std::string leftOut = effect(before);
        EXPECT_EQ(effect(followedBy(defaults[i])), leftOut);
        EXPECT_EQ(effect(followedBy(other)) != leftOut, seen);
        before.push_back(other);
    }
}

INSTANTIATE_TEST_SUITE_P(All, DefaultsOf, testing::ValuesIn(functions), [](const auto& test) {
    return QString::fromLatin1(test.param.name).replace(u'.', u'_').toStdString();
});

} // namespace
