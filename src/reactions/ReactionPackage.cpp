#include "reactions/ReactionPackage.h"

#include "errors/HostCall.h"
#include "material/Reading.h"

namespace morvelan {

ReactionPackage::ReactionPackage(IDispatch* object) {
  HRESULT failure = S_OK;
  properties = com::Query<ICapeReactionProperties>(object, &failure);
  if (!properties)
    throw Failure("Failed to obtain ICapeReactionProperties from reactionsObject in SetReactionObject: " +
                  ErrorText(object, failure));
}

std::vector<std::string> ReactionPackage::ListReactions() const {
  HRESULT failure = S_OK;
  const auto chemistry = properties.As<ICapeReactionChemistry>(&failure);
  if (!chemistry)
    throw Failure("Failed to get ICapeReactionChemistry interface from reaction object: " +
                  ErrorText(properties.Get(), failure));
  com::Variant ids;
  CheckHost(chemistry->GetReactionsIds(ids.Put()), chemistry.Get(),
            [](const std::string& why) { return Failure("Failed to get reaction IDs from reaction object: " + why); });
  return material::ReadOr([&] { return com::ReadStrings(ids.Get()); },
                          [](const std::string& why) {
                            return Failure("format error in array of reaction IDs from reaction object: " + why);
                          });
}

}  // namespace morvelan
