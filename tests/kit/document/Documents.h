/// The documents of the tests of zelkit, as texts that a person can check.
#pragma once

#include <string>

#include "document/DocumentReader.h"

namespace zelkit {

/// Six samples of two processes on two cores: the kernel, a library, a recursion, a thread, and an address
/// of which only the library is known.
inline const std::string kProfileDocument =
    R"({"Description":{"Version":"1.0","Start Time":5,"duration":0.5},
 "processes": {"descriptions": {}, "data": [[1,0,0,"kernel",],[4,7,7,"tool",],[5,7,8,"worker",],[6,9,9,"other",],]},
 "libraries": {"descriptions": {}, "data": [[2,2,"lostAndFound",0,0,],[3,1,"kernel",3221258240,28672,],
  [10,4,"/app/tool",65536,4096,],[11,4,"/lib/libx.so",1073741824,8192,],]},
 "files": {"descriptions": {}, "data": [[1,"work.cpp",[[21,12,],],],]},
 "functions": {"descriptions": {}, "data": [[20,"main\n",65536,256,[10,],],[21,"work",65792,256,[10,],],
  [22,"copy",4096,64,[11,],],[23,"schedule",3221258496,256,[3,],],]},
 "samples": {"descriptions": {}, "data": [
  [1,65796,21,1.5,0,4,7,[[65796,21,],[65544,20,],],],
  [2,65796,21,1.6,1,4,7,[[65796,21,],[65800,21,],[65544,20,],],],
  [3,1073745930,22,1.7,0,5,8,[[65796,21,],[18446744073709551104,2,],[65544,20,],],],
  [4,3221258500,23,1.8,1,5,8,[[1073745930,22,],],],
  [5,1073741830,11,1.9,0,4,7,[],],
  [6,65544,20,2.0,1,6,9,[],],]}})";

/// Task 11 of process 10 runs on both cores and waits, beside a counter and a marker.
inline const std::string kTimechartDocument = R"({"entries":[
{"id":"cpu-0-b","name":"CPU 0 Busy","treeId":"b_0_cpu_root","type":"binary","class":"cpu:busy","show":1,"hints":{"white":"#000000","black":"#ffffff"},"data":[[0.001000,1],[0.006000,0]]}
,{"id":"cpu-1-b","name":"CPU 1 Busy","treeId":"b_1_cpu_root","type":"binary","class":"cpu:busy","show":1,"hints":{},"data":[[0.004000,1]]}
,{"id":"cpu-0-f","name":"CPU 0 MHz","treeId":"b_0_cpu_root","type":"bar","class":"cpu:freq","show":1,"hints":{},"data":[[0.002000,600],[0.005000,800]]}
,{"id":"proc-11-r0","name":"11 - thread","treeId":"11_10_proc_root","type":"binary","class":"proc:running","show":0,"tip":"Running on CPU 0","hints":{},"data":[[0.001000, 1],[0.002000, 0]]}
,{"id":"proc-11-r1","name":"11 - thread","treeId":"11_10_proc_root","type":"binary","class":"proc:running","show":0,"tip":"Running on CPU 1","hints":{},"data":[[0.004000, 1],[0.005000, 0]]}
,{"id":"proc-11-d","name":"11 - thread","treeId":"11_10_proc_root","type":"binary","class":"proc:wait","tip":"Waiting for I/O","show":0,"hints":{},"data":[[0.002000,1],[0.003500,0]]}
,{"id":"proc-11-w","name":"11 - thread","treeId":"11_10_proc_root","type":"binary","class":"proc:wait","tip":"Waiting for CPU","show":0,"hints":{},"data":[[0.003500,1],[0.004000,0]]}
,{"id":"evt","name":"Events","treeId":"evt_root","type":"events","class":"proc:events","show":1,"hints":{},"data":[[0.002500,7,"frame","1 of 2",],]}
,]})";

inline ReadOutcome readText(std::string_view text, DocumentVisitor& visitor) {
  MemorySource source(text, "a.json");
  return readDocument(source, visitor);
}

}  // namespace zelkit
