#include <fathom/BoundingBox.hpp>

#include <fathom/GyrePhysicalSpacePoint.hpp>
#include <fathom/RegisteredName.hpp>
#include <fathom/VConnectionTypeColors.hpp>

#include <trellis/VTypeLabel.hpp>

#include <loam/SpeakPtr.hpp>
#include <loam/StringUtil.hpp>

#include <cstdio>

namespace Orla {

namespace {

using Box = StrongPtr<Gyre::BoundingBox, InterfaceBase>;
using Point = VValueTrait<Gyre::PhysicalSpace::point>;

} // namespace

std::string VValueTrait<Box>::Text(const Box& box)
{
    if (!Loam::SpeakPtr::checkType<InterfaceBase>(box, "Text"))
        return "[?;?]";
    return box ? "[" + Point::Text(box->minimum()) + ";" + Point::Text(box->maximum()) + "]" : "[?;?]";
}

bool VValueTrait<Box>::setValueFromText(Box& box, const std::string& text)
{
    if (!Loam::SpeakPtr::checkType<InterfaceBase>(box, "setValueFromText"))
        return false;
    const std::string left = text.substr(0, text.find(';'));
    const std::string right(Loam::StringUtil::afterLast(text, ';'));
    if (left == "[?" || right == "?]") {
        box = nullptr;
        return true;
    }
    Gyre::PhysicalSpace::point minimum;
    Gyre::PhysicalSpace::point maximum;
    if (box) {
        minimum = box->minimum();
        maximum = box->maximum();
    }
    if (!Point::setValueFromText(minimum, left) || !Point::setValueFromText(maximum, right))
        return false;
    if (box) {
        box->setCorners(minimum, maximum);
        box->updateBall();
    } else {
        box = Loam::makeStrong<Gyre::BoundingBox>(minimum, maximum);
    }
    return true;
}

bool VValueOperations<Box>::areDifferent(const Box& a, const Box& b)
{
    if (a == b)
        return false;
    return !a || !b || !(*a == *b);
}

Box VValueOperations<Box>::copyOf(const Box& box)
{
    return box ? Loam::makeStrong<Gyre::BoundingBox>(*box) : nullptr;
}

void speak(const Box& box, const char* name)
{
    if (!Loam::SpeakPtr::checkType<InterfaceBase>(box, "speak"))
        return;
    if (box)
        box->speak(name);
    else
        std::printf("%s: empty BBox\n", name);
}

namespace {

const RegisteredName boundingBoxName{typeid(Box), "Bounding Box"};
const VTypeLabel boundingBoxLabel{typeid(Box), "bounding box"};
const bool boundingBoxColourIsSet = (VConnectionTypeColors::set(typeid(Box), "#8080FF"), true);

} // namespace

bool VValueTrait<Box>::TypenameInitialized = true;

} // namespace Orla
