#include "support/needed_limits.h"

#include "value/limits.h"

#include <algorithm>
#include <span>

namespace pellum::test {

namespace {

struct Need {
    std::string_view beginning;  // of the names of tests
    std::string_view reason;     // what of theirs is beyond small limits
};

constexpr Need needOrdinaryLimits[] = {
    {"Embed/EndlessProgram.EndsAfterItsSteps/16", "a list of 100,000 elements"},
    {"Embed/GreedyProgram.", "strings and lists end before memory does"},
    {"EmbedEngine.GoesOnAfterEachError", "the ordinary number of calls"},
    {"EmbedLimits.MemoryThatIsGivenBackIsFreeAgain", "a list of 100,000 elements"},
    {"EmbedLimits.SourcesMeetTheLimit", "sources end before memory does"},
    {"EmbedLimits.TheHostMeetsTheLimitToo", "strings and lists end before memory does"},
    {"EmbedThreads.RecursionKnowsTheStackOfItsThread", "a source of 100,000 bytes"},
    {"Formatter.KeepsEveryProgramOfTheTests", "layouts of more than 20,000 bytes"},
    {"Fuzzing.EndlessProgramsRunOutOfFuel", "calls end before the fuel does"},
    {"Fuzzing.GrowingProgramsRunOutOfMemory", "strings and lists end before memory does"},
    {"Lifetimes.NothingStaysInFreeSlots", "strings of more than 10,000 bytes"},
    {"Memory.GrowthWithoutAnEndIsReported", "strings and lists end before memory does"},
    {"NativeCall.RefusesWhatWouldBeTooLargeAtOnce", "a string of 2^24 bytes"},
    {"Stack.DeepSources", "sources that are longer"},
    {"String.ASumOfManyPiecesSeldomMoves", "a string of 100,129 bytes"},
    {"bench/scaling/deep_calls.vm", "1,000 calls"},
    {"bench/scaling/string_search.", "strings of more than 10,000 bytes"},
    {"cli/limits/a_limit_on_data.", "strings end before memory does"},
    {"cli/limits/a_line_of_input_that_does_not_fit_into_memory.", "lines end before memory does"},
    {"cli/limits/a_refused_allocation_can_be_caught.", "strings and lists end before memory does"},
    {"cli/limits/a_source_that_does_not_fit_into_memory.", "sources end before memory does"},
    {"cli/limits/the_prompt_goes_on_when_memory_is_used_up.", "strings end before memory does"},
    {"cli/limits/a_result_beyond_the_limit_is_refused_before_it_is_built.",
     "a string of 2^20 bytes"},
    {"cli/sources/an_endless_device_", "the message has the ordinary limit"},
    {"cli/sources/the_endless_device_", "the message has the ordinary limit"},
    {"cli/streams/a_line_of_input_without_an_end.", "the message has the ordinary limit"},
    {"cli/streams/a_line_without_an_end_at_the_prompt.", "the message has the ordinary limit"},
    {"cli/streams/input_of_long_lines.", "lines of 5,000 bytes"},
    {"docs/engines/deep_recursion_", "the ordinary number of calls"},
    {"docs/engines/many_values_on_the_stack_at_once_", "the ordinary size of the stack"},
    {"docs/errors/branch_too_large_", "a source of 160,000 bytes"},
    {"docs/errors/builtin_out_of_memory_", "strings end before memory does"},
    {"docs/errors/cannot_iterate_over_string_too_long_", "a string of 2^28 bytes"},
    {"docs/errors/cannot_iterate_over_type_out_of_memory_", "strings end before memory does"},
    {"docs/errors/loop_body_too_large_", "a source of 160,000 bytes"},
    {"docs/errors/nesting_too_deep_2.", "a source of 2,400,000 bytes"},
    {"docs/errors/operator_out_of_memory_", "strings end before memory does"},
    {"docs/errors/operator_result_too_large_", "a string of 2^30 bytes"},
    {"docs/errors/pellum_path_is_longer_than_n_bytes_", "the message has the ordinary limit"},
    {"docs/errors/too_many_constants_", "a source of 131,074 bytes"},
    {"docs/limits/running_on_the_virtual_machine_", "the ordinary number of calls"},
    {"examples/sieve.", "a list of 50,000 elements"},
    {"terminal/scripts.control_c_ends_a_script_", "lines that are written at once"},
};

constexpr Need needSmallLimits[] = {
    {"Agreement.AtTheEdges", "programs that fill the stack"},
    {"Limits/LongestList", "lists and texts up to the last element and byte"},
    {"Limits/LongestString", "strings up to the last byte"},
};

// What this build does not have.
constexpr std::span<const Need> needs = hasSmallLimits ? std::span<const Need>(needOrdinaryLimits)
                                                       : std::span<const Need>(needSmallLimits);

}  // namespace

bool canRun(std::string_view name) {
    return std::ranges::none_of(needs,
                                [&](const Need& need) { return name.starts_with(need.beginning); });
}

std::string withoutWhatCannotRun(std::string filter) {
    filter += filter.find('-') == filter.npos ? "-" : ":";
    for (const Need& need : needs) filter += std::string(need.beginning) + "*:";
    return filter;
}

std::optional<std::string> uselessNeed(const std::vector<std::string>& names) {
    for (const Need& need : needs) {
        const bool isUseful = std::ranges::any_of(
            names, [&](const std::string& name) { return name.starts_with(need.beginning); });
        if (!isUseful) return std::string(need.beginning);
    }
    return std::nullopt;
}

}  // namespace pellum::test
