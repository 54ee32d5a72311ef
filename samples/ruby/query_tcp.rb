# Asks an instrument on the network who it is: ruby query_tcp.rb [host [port [command]]]
require 'win32ole'

# The type library's enumerations as constants; Ruby writes the first letter of each large.
module Kesp
end

# A text by reference, into which the library writes a reply.
def text_variable
  WIN32OLE_VARIANT.new('', WIN32OLE::VARIANT::VT_BSTR | WIN32OLE::VARIANT::VT_BYREF)
end

host, port, command = ARGV
command ||= '*IDN?'
begin
  comm = WIN32OLE.new('KespCommObj.CKespCommObj')
  WIN32OLE.const_load(comm, Kesp)
  comm.CommStyle = Kesp::CsTCPIP
  tcp = comm.CommObject
  tcp.IPAddress = host || '127.0.0.1'
  tcp.Port = (port || 10_001).to_i

  reply = text_variable
  puts "command:     #{command}"
  if comm.Query(reply, command)
    puts "reply:       #{reply.value}"
  else
    puts "failed:      #{comm.CommError} #{comm.CommErrorSource} #{comm.CommErrorDescr}"
    exit 1
  end
rescue WIN32OLERuntimeError => e
  puts "error:       #{e.message}"
  exit 2
end
