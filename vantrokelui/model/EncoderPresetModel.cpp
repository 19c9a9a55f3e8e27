#include <vantrokelui/model/EncoderPresetModel.h>

#include <kelcore/allocator/STLAllocator.h>

namespace vantrokelui {

std::shared_ptr<EncoderPresetModel> EncoderPresetModel::Create() {
    return std::allocate_shared<EncoderPresetModel>(
        kelcore::allocator::STLAllocator<EncoderPresetModel>(), ConstructionKey());
}

EncoderPresetModel::EncoderPresetModel(ConstructionKey) {}

EncoderPresetModel::~EncoderPresetModel() = default;

}  // namespace vantrokelui
