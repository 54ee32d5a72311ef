# Looks for an instrument at an address, shows what is tried, and stops after so many commands:
# ruby detect.rb [host [port [commands]]]
require 'win32ole'

# The methods "on" and an event's name are called. An error that leaves one ends the whole program at once.
class Watcher
  def initialize(allowed)
    @allowed = allowed
    @tried = 0
  end

  # The hash that it returns goes into the arguments of those names, which the library gave by reference.
  def onAutoDetectUpdate(cmd, address, port, _abort)
    if @tried == @allowed
      puts "stopped:     before #{cmd}"
      return { 'Abort' => true }
    end
    @tried += 1
    puts "trying:      #{cmd} at #{address}:#{port}"
  end

  def onAutoDetectEnd
    puts "ended:       after #{@tried} commands"
  end
end

host, port, commands = ARGV
begin
  tcp = WIN32OLE.new('KespCommObj.CKespTCP')
  tcp.IPAddress = host || '127.0.0.1'
  tcp.Port = (port || 10_001).to_i
  events = WIN32OLE_EVENT.new(tcp)
  events.handler = Watcher.new((commands || 2).to_i)

  reply = WIN32OLE_VARIANT.new('', WIN32OLE::VARIANT::VT_BSTR | WIN32OLE::VARIANT::VT_BYREF)
  found = tcp.AutoDetect(reply)
  events.unadvise
  tcp.Uninitialize
  puts found ? "reply:       #{reply.value}" : 'nothing found'
  exit 1 unless found
rescue WIN32OLERuntimeError => e
  puts "error:       #{e.message}"
  exit 2
end
