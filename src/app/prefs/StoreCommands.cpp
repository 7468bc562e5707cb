#include <QCoreApplication>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <limits>

#include "app/prefs/CommandLine.h"
#include "app/prefs/Session.h"
#include "platform/linux/DBusNotificationCenter.h"
#include "plist/PlistIO.h"
#include "prefs/DefaultValues.h"

namespace corvalis::cli {

using plist::Value;

namespace {

std::string lowercase(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// Parses `text` as a value of the same type as `model`; none when it does not parse.
std::optional<Value> parseLike(const Value& model, const std::string& text) {
    switch (model.type()) {
    case plist::Type::Boolean: {
        std::string word = lowercase(text);
        if (word == "true" || word == "yes" || word == "1") return Value(true);
        if (word == "false" || word == "no" || word == "0") return Value(false);
        return std::nullopt;
    }
    case plist::Type::Integer: {
        errno = 0;
        char* end = nullptr;
        long long number = std::strtoll(text.c_str(), &end, 10);
        if (text.empty() || *end || errno == ERANGE || number < std::numeric_limits<std::int32_t>::min() ||
            number > std::numeric_limits<std::int32_t>::max())
            return std::nullopt;
        return Value::int32(static_cast<std::int32_t>(number));
    }
    case plist::Type::Real: {
        errno = 0;
        char* end = nullptr;
        float number = std::strtof(text.c_str(), &end);
        if (text.empty() || *end || errno == ERANGE || !std::isfinite(number)) return std::nullopt;
        return Value::real32(number);
    }
    case plist::Type::String: return Value(text);
    default: return std::nullopt;
    }
}

const char* expectedForm(plist::Type type) {
    switch (type) {
    case plist::Type::Boolean: return "a boolean (true, false, yes, no, 1 or 0)";
    case plist::Type::Integer: return "a whole number between -2147483648 and 2147483647";
    case plist::Type::Real: return "a finite decimal number";
    default: return "text";
    }
}

int show(Context& context) {
    if (wrongArgumentCount(context, 0, "show")) return Usage;
    Session session(context);
    if (!session.load(context)) return Failure;
    context.out << plist::toXml(session.prefs.prefsData());
    return Success;
}

int get(Context& context) {
    if (wrongArgumentCount(context, 1, "get")) return Usage;
    const std::string& key = context.args[0];
    Session session(context);
    if (!session.load(context)) return Failure;
    Value value = session.prefs.simpleStringForKey(key);
    if (value.isAbsent()) value = defaultValues()[key];
    if (value.isAbsent()) {
        context.err << "corvalis-prefs get: \"" << key << "\" is not among the settings\n";
        return Usage;
    }
    context.out << plist::toXml(value);
    return Success;
}

int set(Context& context) {
    if (wrongArgumentCount(context, 2, "set")) return Usage;
    const std::string& key = context.args[0];
    const Value& model = defaultValues()[key];
    bool scalar = model.type() == plist::Type::Boolean || model.type() == plist::Type::Integer ||
                  model.type() == plist::Type::Real || model.type() == plist::Type::String;
    if (!scalar) {
        context.err << "corvalis-prefs set: \"" << key << "\" "
                    << (model.isAbsent() ? "is not a setting with a factory default"
                                         : "holds a list or record; it cannot be set from the command line")
                    << "\n";
        return Usage;
    }
    std::optional<Value> value = parseLike(model, context.args[1]);
    if (!value) {
        context.err << "corvalis-prefs set: \"" << context.args[1] << "\" is not valid for " << key << ", which takes "
                    << expectedForm(model.type()) << "\n";
        return Usage;
    }
    Session session(context);
    if (!session.load(context)) return Failure;
    session.prefs.setObject(*value, key);
    session.prefs.synchronizeValue(*value, key);
    if (!session.reportWriteError(context)) return Failure;
    if (!session.bus.isConnected())
        context.err << "corvalis-prefs set: no session bus; the controller was not told of the change\n";
    return Success;
}

int monitor(Context& context) {
    if (wrongArgumentCount(context, 0, "monitor")) return Usage;
    DBusNotificationCenter bus;
    if (!bus.isConnected()) {
        context.err << "corvalis-prefs monitor: no session bus to watch\n";
        return Failure;
    }
    bus.addObserver("", "", [&context](const Notification& notification) {
        context.out << "name: " << notification.name << "\nobject: " << notification.object << "\nuserInfo:";
        if (notification.userInfo)
            context.out << "\n" << plist::toXml(*notification.userInfo);
        else
            context.out << " (none)\n";
        context.out << std::endl;
    });
    context.out << "Watching the session bus for Corvalis notifications; press Ctrl-C to stop." << std::endl;
    return QCoreApplication::exec();
}

}  // namespace

std::vector<Command> storeCommands() {
    return {
        {"show", "", "Loads the settings as the settings window does (normalised, and written back),\n"
                     "and prints them as an XML property list.", show},
        {"get", "KEY", "Prints one setting as an XML property list, after loading. An unknown key\n"
                       "is an error (exit status 2).", get},
        {"set", "KEY VALUE",
         "Changes a setting that has a plain factory default (a boolean, number or text),\n"
         "parsing VALUE as that default's type (booleans: true, false, yes, no, 1, 0),\n"
         "tells the running controller as the settings window does, and saves.", set},
        {"monitor", "", "Prints every Corvalis notification on the session bus (name, object and\n"
                        "user info) until interrupted.", monitor},
    };
}

}  // namespace corvalis::cli
