% Not yet run. Finds the instruments on the network and asks each who it is.
%
%   discover
function discover
    sckUDPProtocol = 1;
    tcp = actxserver('KespCommObj.CKespTCP');
    % However this function ends.
    release = onCleanup(@() delete(tcp));
    % One broadcast to everybody, over UDP; what answers is asked over TCP.
    tcp.Protocol = sckUDPProtocol;
    try
        found = tcp.AutoDetect('');
    catch failure
        % Its text has the source and the description of the library.
        fprintf('%s\n', failure.message);
        return
    end
    devices = tcp.Devices;
    for position = 1:devices.Count
        instrument = devices.Item(int32(position));
        fprintf('instrument:  %s  model %s  serial %s\n', instrument.IPAddress, instrument.Model, instrument.Serial);
    end
    if ~found, disp('nobody answered'); end
end
