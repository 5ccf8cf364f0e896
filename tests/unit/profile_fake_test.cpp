#include "contract/profile_contract.h"
#include "fakes/fakes.h"

namespace corvane {
namespace {

TEST(ProfileContract, Fake) {
    fakes::FakeProfile profile;
    contract::CheckProfileContract(profile, "C:\\Corvane\\Settings.ini");
}

}  // namespace
}  // namespace corvane
