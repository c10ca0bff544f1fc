// Protocol Buffers' descriptors, made at run time: a file for each class. No inheritance.
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <google/protobuf/descriptor.h>
#include <google/protobuf/descriptor.pb.h>

#include "contenderOf.h"
#include "contenders.h"

namespace zov::benchmarks {

namespace {

using google::protobuf::Descriptor;
using google::protobuf::DescriptorPool;
using google::protobuf::FieldDescriptor;
using google::protobuf::FieldDescriptorProto;
using google::protobuf::FileDescriptorProto;

FieldDescriptorProto::Type typeOf(valueType type) {
    switch (type) {
    case valueType::boolean: return FieldDescriptorProto::TYPE_BOOL;
    case valueType::integer: return FieldDescriptorProto::TYPE_INT32;
    case valueType::longInteger: return FieldDescriptorProto::TYPE_INT64;
    case valueType::real: return FieldDescriptorProto::TYPE_DOUBLE;
    case valueType::text: return FieldDescriptorProto::TYPE_STRING;
    }
    throw std::logic_error("a type without a counterpart");
}

class protobufStore {
public:
    using text = std::string;
    using qualifiedText = std::string;
    using classHandle = Descriptor const*;
    using fieldHandle = FieldDescriptor const*;
    static constexpr bool isReadableBesideWriter = false;

    explicit protobufStore(workload const& load)
        : mPool(std::make_unique<DescriptorPool>()), mFieldNames(load.fieldNames()) {}

    static text classNameOf(std::string const& name) { return name; }
    static text fieldNameOf(std::string const& name) { return name; }
    static qualifiedText qualifiedNameOf(std::string const& className, std::string const& fieldName) {
        return className + "." + fieldName;
    }

    classHandle addClass(classPlan const& plan, classHandle const*) {
        FileDescriptorProto file;
        file.set_name(plan.mName);
        auto* const message = file.add_message_type();
        message->set_name(plan.mName);
        int number = 0;
        for (auto const& field : plan.mFields)
            describe(*message->add_field(), field, ++number);
        auto const* const built = mPool->BuildFile(file);
        if (!built) throw std::runtime_error("protobuf refuses " + plan.mName);
        mClasses.push_back(built->message_type(0));
        return mClasses.back();
    }

    classHandle findClass(text const& name) const { return mPool->FindMessageTypeByName(name); }
    fieldHandle findField(qualifiedText const& name) const { return mPool->FindFieldByName(name); }

    void forEachField(auto const& visit) const {
        for (auto const* const owner : mClasses)
            for (int number = 0; number < owner->field_count(); ++number) {
                auto const* const field = owner->field(number);
                visit(field->name().front(), field->type() == FieldDescriptor::TYPE_INT32);
            }
    }

    static int intDefault(fieldHandle field) { return field->default_value_int32(); }

    static bool isClass(classHandle found, classPlan const& plan) { return found->full_name() == plan.mName; }
    bool isField(fieldHandle found, classPlan const& owner, fieldPlan const& plan) const {
        return isClass(found->containing_type(), owner) && found->name() == mFieldNames[plan.mName];
    }

private:
    void describe(FieldDescriptorProto& field, fieldPlan const& plan, int number) const {
        field.set_name(mFieldNames[plan.mName]);
        field.set_number(number);
        field.set_label(FieldDescriptorProto::LABEL_OPTIONAL);
        field.set_type(typeOf(plan.mType));
        if (plan.mHasDefault) field.set_default_value(defaultOf(plan));
    }

    static std::string defaultOf(fieldPlan const& plan) {
        if (plan.mType == valueType::boolean) return plan.mDefault % 2 != 0 ? "true" : "false";
        return std::to_string(plan.mDefault);
    }

    std::unique_ptr<DescriptorPool> mPool;
    std::vector<std::string> mFieldNames;
    std::vector<Descriptor const*> mClasses; // a pool does not list its own
};

} // namespace

contenderKind protobufKind() {
    return kindOf<protobufStore>("protobuf");
}

} // namespace zov::benchmarks
