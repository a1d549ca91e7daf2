#pragma once

#include <string_view>

/// Texts on the RTOS link and of the shared storage that several tests use, byte for byte.
namespace transcripts {

inline constexpr std::string_view LIST_REQUEST = R"([
	{
		"msg_id" : 76,
		"param_get" : ""
	}
])";

inline constexpr std::string_view DONE = R"([{"ret_val":0}])";

/// An RTOS list answer, a list file and a reticle file that together give ONE_DOT.
inline constexpr std::string_view LIST_ANSWER = R"([{"param":"list.json","ret_val":0}])";
inline constexpr std::string_view ONE_DOT_LIST = R"([{"reticles":[
{"index":1,"name":"Dot","data":"dot.svg","userColor":"red","isDeletable":1,"isActive":0}]}])";
inline constexpr std::string_view DOT = R"(<circle fill="user_color"/>)";

/// Replies with that list: of an accepted command, and of one that asked the RTOS for nothing.
inline constexpr std::string_view OK_AND_ONE_DOT = R"({
	"result" : "OK",
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"red\"/>",
			"index" : 1,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Dot"
		}
	]
})";
inline constexpr std::string_view ONE_DOT = R"({
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"red\"/>",
			"index" : 1,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Dot"
		}
	]
})";

}  // namespace transcripts
